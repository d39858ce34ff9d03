// Makes texts of strangers fit for a line of the log. Stateless, any thread.
#pragma once
#include <QString>

namespace korvia {

/// At most 80 characters of the text, with "?" for all but printable ASCII.
inline QString printable(const QString& text) {
  constexpr int kMaxChars = 80;
  QString line = text.left(kMaxChars);
  for (QChar& c : line) {
    if (c < QLatin1Char(' ') || c > QLatin1Char('~'))
      c = QLatin1Char('?');
  }
  return line;
}

}  // namespace korvia

#include "TextExpansion.h"

#include <QLocale>
#include <QStringView>

namespace korvia {

namespace {

const QLatin1String kTimeToken("${Time}");
constexpr int kMostFormatCharacters = 256;

/// Appends the characters that can be drawn, until `out` has kMostTextCharacters.
void appendDrawable(QString& out, QStringView text) {
  for (int i = 0; i < text.size() && out.size() < kMostTextCharacters; ++i) {
    const QChar c = text[i];
    if (c == QLatin1Char('\r')) {
      if (i + 1 == text.size() || text[i + 1] != QLatin1Char('\n'))
        out += QLatin1Char('\n');
    } else if (c == QLatin1Char('\n') || c == QChar::LineSeparator || c == QChar::ParagraphSeparator ||
               c == QLatin1Char('\v') || c == QLatin1Char('\f')) {
      out += QLatin1Char('\n');
    } else if (c == QLatin1Char('\t')) {
      out += QLatin1String("    ");
    } else if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
      out += c;
      out += text[++i];
    } else if (c.isSurrogate()) {
      out += QChar(QChar::ReplacementCharacter);
    } else if (c.category() != QChar::Other_Control) {
      out += c;
    }
  }
}

}  // namespace

bool showsTime(const QString& text) {
  return text.contains(kTimeToken);
}

QString expandText(const QString& text, const QString& timeFormat, const QDateTime& now) {
  QString time;
  QString out;
  int from = 0;
  while (out.size() < kMostTextCharacters) {
    const int token = text.indexOf(kTimeToken, from);
    const int end = token < 0 ? text.size() : token;
    appendDrawable(out, QStringView(text).mid(from, end - from));
    if (token < 0)
      break;
    if (time.isNull())
      time = QLocale::c().toString(now, timeFormat.left(kMostFormatCharacters));
    appendDrawable(out, time);
    from = token + kTimeToken.size();
  }
  return out;
}

}  // namespace korvia

// Finds the emoji in a text. Other fonts have many of them without colours, so they get a font of their own.
// Pure function, any thread.
#pragma once
#include <QFont>
#include <QString>
#include <QTextLayout>
#include <QVector>

namespace korvia {

struct EmojiText {
  /// Without the selectors in emoji: the shaper takes them for characters, which break sequences up.
  QString text;
  QVector<QTextLayout::FormatRange> formats;

  /// Keeps the first `length` characters.
  void truncate(int length);
};

/// Formats with the emoji font for the characters that are shown in colour: those that Unicode shows so by
/// itself, and those before a variation selector 16. Sequences with joiners, skin tones and flags stay
/// together.
EmojiText markEmoji(const QString& text, const QFont& font);

}  // namespace korvia

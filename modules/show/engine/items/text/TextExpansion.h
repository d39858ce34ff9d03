// Puts the time into the text of an item. Pure functions, any thread.
#pragma once
#include <QDateTime>
#include <QString>

namespace korvia {

/// Most characters of a text that are drawn: more than fits on any picture in a readable size.
inline constexpr int kMostTextCharacters = 16384;

/// Whether the text has a token that changes with the time, so that it must be drawn again.
bool showsTime(const QString& text);

/// The text with each ${Time} replaced by `now` in the QDateTime format, with English names; other tokens
/// stay. At most kMostTextCharacters characters, and no control characters but line breaks, each a single
/// '\n'.
QString expandText(const QString& text, const QString& timeFormat, const QDateTime& now);

}  // namespace korvia

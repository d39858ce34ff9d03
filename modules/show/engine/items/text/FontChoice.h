// Finds an installed font for the name that a record has, which may come from another system. Any thread.
#pragma once
#include <QFont>
#include <QString>

namespace korvia {

/// The font of this name, upright or with the style that the name ends with, such as "Bold"; a name may join
/// several by " & ", of which the first installed one is taken. When none is installed, Noto Sans CJK in the
/// weight and slant of the name. Characters that the font lacks come from Noto Sans CJK, colour emoji from
/// Noto Color Emoji, and others from whatever has them. Not hinted, so that a text has the same proportions
/// in every size.
/// @param pixelSize at least 1.
QFont chooseFont(const QString& name, int pixelSize);

/// The font with Noto Color Emoji before all others.
QFont emojiFont(const QFont& font);

}  // namespace korvia

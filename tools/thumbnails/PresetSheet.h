// Draws all presets of text styles over a dark, a bright and a busy picture on one sheet, to judge them by
// eye. Needs a QGuiApplication with fonts; main thread.
#pragma once
#include <QImage>

namespace korvia {

/// Rows of name, number and the text over the three pictures, in two blocks beside each other.
QImage drawPresetSheet();

}  // namespace korvia

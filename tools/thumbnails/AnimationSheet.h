// Draws one picture with every entrance and exit of texts, one row for each. Needs a QGuiApplication with
// fonts; main thread.
#pragma once
#include <QImage>

namespace korvia {

/// Rows of name, number and the pictures at 0, 25, 50, 75 and 100 %: entrances on the left, exits on the
/// right.
QImage drawAnimationSheet();

}  // namespace korvia

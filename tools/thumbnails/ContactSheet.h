// Draws one picture with every transition of the catalogue, one row for each. Needs a QGuiApplication with
// fonts; main thread.
#pragma once
#include <QImage>

namespace korvia {

/// Rows of name, number and the pictures at 0, 25, 50, 75 and 100 %, in three blocks beside each other.
QImage drawContactSheet();

}  // namespace korvia

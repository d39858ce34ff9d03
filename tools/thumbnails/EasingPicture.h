// Draws the curve of an easing code. Needs a QGuiApplication; main thread.
#pragma once
#include <QImage>

namespace korvia {

inline constexpr int kEasingPictureSize = 100;
/// The square of the curve. Progress runs from left to right and eased progress upwards, both 0 to 1.
inline constexpr int kEasingPlotLeft = 12;
inline constexpr int kEasingPlotTop = 12;
inline constexpr int kEasingPlotSize = 76;

/// The picture of a code, 0 to 28: opaque, in the colours of the console.
QImage drawEasing(int code);

}  // namespace korvia

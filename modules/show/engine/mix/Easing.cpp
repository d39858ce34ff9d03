#include "Easing.h"

#include <QEasingCurve>
#include <algorithm>
#include <array>

namespace korvia {

static_assert(QEasingCurve::Linear == 0 && QEasingCurve::OutInCirc == kEasingCount - 1,
              "the codes are those of QEasingCurve");

namespace {

using Curves = std::array<QEasingCurve, kEasingCount>;

// Made once, because making a curve allocates and a fade needs one at every frame.
const Curves& curves() {
  static const Curves all = [] {
    Curves made;
    for (int code = 0; code < kEasingCount; ++code)
      made[static_cast<std::size_t>(code)].setType(static_cast<QEasingCurve::Type>(code));
    return made;
  }();
  return all;
}

}  // namespace

double easedProgress(int code, double progress) {
  if (progress <= 0)
    return 0;
  if (progress >= 1)
    return 1;
  if (code < 0 || code >= kEasingCount)
    code = QEasingCurve::Linear;
  // The exponential curves of Qt leave the range by up to a thousandth.
  return std::clamp(curves()[static_cast<std::size_t>(code)].valueForProgress(progress), 0.0, 1.0);
}

}  // namespace korvia

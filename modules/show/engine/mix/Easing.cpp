#include "Easing.h"

#include <QEasingCurve>
#include <algorithm>

namespace korvia {

static_assert(QEasingCurve::Linear == 0 && QEasingCurve::OutInCirc == kEasingCount - 1,
              "the codes are those of QEasingCurve");

double easedProgress(int code, double progress) {
  if (progress <= 0)
    return 0;
  if (progress >= 1)
    return 1;
  if (code < 0 || code >= kEasingCount)
    code = QEasingCurve::Linear;
  // The exponential curves of Qt leave the range by a thousandth.
  return std::clamp(QEasingCurve(static_cast<QEasingCurve::Type>(code)).valueForProgress(progress), 0.0, 1.0);
}

}  // namespace korvia

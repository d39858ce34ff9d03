#include "MixCourse.h"

#include <algorithm>
#include <cmath>

namespace korvia {

double smoothStep(double x) {
  x = std::clamp(x, 0.0, 1.0);
  return x * x * (3 - 2 * x);
}

double depthAt(double position) {
  return std::clamp(1 - std::abs(2 * position - 1), 0.0, 1.0);
}

int hiddenFadeWeight(double position) {
  constexpr double kStart = 0.15;
  return static_cast<int>(std::lround(256 * smoothStep((position - kStart) / (1 - 2 * kStart))));
}

}  // namespace korvia

#include "MixCourse.h"

#include <algorithm>
#include <cmath>

#include "engine/mix/SmoothStep.h"

namespace korvia {

double depthAt(double position) {
  return std::clamp(1 - std::abs(2 * position - 1), 0.0, 1.0);
}

int hiddenFadeWeight(double position) {
  constexpr double kStart = 0.15;
  return static_cast<int>(std::lround(256 * smoothStep((position - kStart) / (1 - 2 * kStart))));
}

}  // namespace korvia

// The passage from one level to another without a jerk. Pure function, any thread.
#pragma once
#include <algorithm>

namespace korvia {

/// 0 up to 0, 1 from 1 on, level at both.
inline double smoothStep(double x) {
  x = std::clamp(x, 0.0, 1.0);
  return x * x * (3 - 2 * x);
}

}  // namespace korvia

// Curves over the position of a take that several transitions share. Pure functions, any thread.
#pragma once
#include <algorithm>
#include <cmath>

namespace korvia {

/// 0 up to x = 0, 1 from x = 1 on, between them 3x^2 - 2x^3: without slope at both ends.
inline double smoothStep(double x) {
  x = std::clamp(x, 0.0, 1.0);
  return x * x * (3 - 2 * x);
}

/// Linear from 0 at position 0 to 1 in the middle and back to 0 at position 1.
inline double triangleAt(double position) {
  return std::clamp(1 - std::abs(2 * position - 1), 0.0, 1.0);
}

/// The same without slope at both ends and in the middle: exactly 0 at both ends, 1 in the middle.
inline double swellAt(double position) {
  return smoothStep(4 * position * (1 - position));
}

/// Weight of the second picture, 0 to 256, in a fade that begins and ends where the picture is blurred
/// already.
inline int hiddenFadeWeight(double position) {
  constexpr double kStart = 0.15;
  return static_cast<int>(std::lround(256 * smoothStep((position - kStart) / (1 - 2 * kStart))));
}

}  // namespace korvia

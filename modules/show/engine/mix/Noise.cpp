#include "Noise.h"

#include <cmath>

namespace korvia {

namespace {

// An avalanche of multiplications and shifts: each bit of the input changes half of the output's.
std::uint32_t scattered(std::uint32_t value) {
  value = (value ^ value >> 16) * 0x7feb352dU;
  value = (value ^ value >> 15) * 0x846ca68bU;
  return value ^ value >> 16;
}

double slope(double t) {
  return t * t * (3 - 2 * t);
}

}  // namespace

double chanceAt(std::uint32_t seed, int x, int y) {
  const std::uint32_t column = scattered(seed + 0x9e3779b9U * static_cast<std::uint32_t>(x));
  return scattered(column + 0x85ebca6bU * static_cast<std::uint32_t>(y)) / 4294967296.0;
}

double noiseAt(std::uint32_t seed, double x, double y) {
  const double left = std::floor(x);
  const double above = std::floor(y);
  const int column = static_cast<int>(left);
  const int row = static_cast<int>(above);
  const double right = slope(x - left);
  const double below = slope(y - above);
  const double top = std::lerp(chanceAt(seed, column, row), chanceAt(seed, column + 1, row), right);
  const double bottom =
      std::lerp(chanceAt(seed, column, row + 1), chanceAt(seed, column + 1, row + 1), right);
  return std::lerp(top, bottom, below);
}

double cloudsAt(std::uint32_t seed, double x, double y, int octaves) {
  constexpr double kWeaker = 0.55;
  double sum = 0;
  double all = 0;
  double strength = 1;
  for (int octave = 0; octave < octaves; ++octave) {
    sum += strength * noiseAt(seed + static_cast<std::uint32_t>(octave), x, y);
    all += strength;
    strength *= kWeaker;
    x *= 2;
    y *= 2;
  }
  return sum / all;
}

}  // namespace korvia

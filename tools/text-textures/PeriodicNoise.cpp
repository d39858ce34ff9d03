#include "PeriodicNoise.h"

#include <cmath>

namespace korvia {

namespace {

int wrapped(int value, int period) {
  const int rest = value % period;
  return rest < 0 ? rest + period : rest;
}

double eased(double t) {
  return t * t * (3 - 2 * t);
}

double mixed(double a, double b, double t) {
  return a + (b - a) * t;
}

}  // namespace

double cellNumber(int x, int y, std::uint32_t seed) {
  std::uint32_t bits = static_cast<std::uint32_t>(x) * 0x9E3779B1U ^
                       static_cast<std::uint32_t>(y) * 0x85EBCA77U ^ seed * 0xC2B2AE3DU;
  bits = (bits ^ bits >> 15) * 0x2C1B3C6DU;
  bits = (bits ^ bits >> 12) * 0x297A2D39U;
  bits ^= bits >> 15;
  return bits / 4294967295.0;
}

double smoothNoise(double u, double v, int cellsU, int cellsV, std::uint32_t seed) {
  const double x = u * cellsU;
  const double y = v * cellsV;
  const int left = static_cast<int>(std::floor(x));
  const int top = static_cast<int>(std::floor(y));
  const auto corner = [&](int dx, int dy) {
    return cellNumber(wrapped(left + dx, cellsU), wrapped(top + dy, cellsV), seed);
  };
  const double tx = eased(x - left);
  const double ty = eased(y - top);
  return mixed(mixed(corner(0, 0), corner(1, 0), tx), mixed(corner(0, 1), corner(1, 1), tx), ty);
}

double layeredNoise(double u, double v, int cellsU, int cellsV, int octaves, std::uint32_t seed) {
  double sum = 0;
  double weights = 0;
  double weight = 1;
  for (int octave = 0; octave < octaves; ++octave) {
    sum += weight *
           smoothNoise(u, v, cellsU << octave, cellsV << octave, seed + static_cast<std::uint32_t>(octave));
    weights += weight;
    weight /= 2;
  }
  return sum / weights;
}

PointDistances pointDistances(double u, double v, int cells, std::uint32_t seed) {
  const double x = u * cells;
  const double y = v * cells;
  const int left = static_cast<int>(std::floor(x));
  const int top = static_cast<int>(std::floor(y));
  PointDistances distances{8, 8};
  for (int cellY = top - 2; cellY <= top + 2; ++cellY)
    for (int cellX = left - 2; cellX <= left + 2; ++cellX) {
      const int column = wrapped(cellX, cells);
      const int row = wrapped(cellY, cells);
      const double distance = std::hypot(cellX + cellNumber(column, row, seed) - x,
                                         cellY + cellNumber(column, row, seed + 1) - y);
      if (distance < distances.nearest)
        distances = {distance, distances.nearest};
      else if (distance < distances.second)
        distances.second = distance;
    }
  return distances;
}

}  // namespace korvia

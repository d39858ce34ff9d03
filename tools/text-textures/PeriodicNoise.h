// Noise that repeats after 1 in both directions, so that pictures made of it are seamless. Pure functions,
// any thread; the same arguments give the same noise.
#pragma once
#include <cstdint>

namespace korvia {

/// A cell's number of its own, 0 to 1.
double cellNumber(int x, int y, std::uint32_t seed);

/// Smooth noise, 0 to 1, with this many cells to a period in each direction.
double smoothNoise(double u, double v, int cellsU, int cellsV, std::uint32_t seed);

/// Smooth noise and its octaves, each twice as fine and half as strong, 0 to 1.
double layeredNoise(double u, double v, int cellsU, int cellsV, int octaves, std::uint32_t seed);

struct PointDistances {
  double nearest = 0;
  double second = 0;
};

/// Distances, in cells, to the two nearest of points that lie one in each cell.
PointDistances pointDistances(double u, double v, int cells, std::uint32_t seed);

}  // namespace korvia

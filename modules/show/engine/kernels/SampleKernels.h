// Samples a plane at arbitrary points, for distortions, rotations and blurs. Pure functions, any thread.
#pragma once
#include <cstdint>

#include "engine/frame/PlaneView.h"

namespace korvia {

/// Coordinates are fixed point with this many fraction bits; a sample lies at its integer coordinates.
inline constexpr int kSampleFractionBits = 8;
inline constexpr int kSampleOne = 1 << kSampleFractionBits;

/// out[i] = the plane at (x[i], y[i]), bilinear, rounded; points outside take the nearest edge. A point
/// without a fraction gives exactly its sample. Coordinates are in 1/256 sample, from -2^30 to 2^30.
void sampleRow(const PlaneView& plane, const std::int32_t* x, const std::int32_t* y, std::uint8_t* out,
               int count);

/// The displacements of the samples of one row. They are given at nodes `1 << cellBits` samples apart, from
/// sample 0 on, in the node rows above and below, and are interpolated linearly between the four nodes
/// around a sample. All four arrays can be read for 16 nodes more than the row has.
struct BentRow {
  const std::int32_t* upperX = nullptr;
  const std::int32_t* upperY = nullptr;
  const std::int32_t* lowerX = nullptr;
  const std::int32_t* lowerY = nullptr;
  /// 2 or 3.
  int cellBits = 3;
  /// Distance of this row from the upper node row, less than a cell.
  int down = 0;
  /// The unit of the displacements is 1 / (1 << fractionBits) sample, from 1/256 on. No displacement exceeds
  /// 2^24 units.
  int fractionBits = kSampleFractionBits;
};

/// A row to fill from a plane.
struct BentTarget {
  PlaneView plane;
  std::uint8_t* out = nullptr;
};

/// For each target, out[i] = its plane at (i, y) plus the displacement of sample i, bilinear and rounded as
/// in sampleRow(). Points outside are mirrored at the edges; those farther out than one picture take the far
/// edge. All planes have the same size and stride, so the coordinates are computed once.
void sampleBentRow(const BentTarget* targets, int targetCount, int y, const BentRow& bent, int count);

}  // namespace korvia

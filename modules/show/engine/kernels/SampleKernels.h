// Reads a plane at any points: the loop behind distortions, rotations and blurs. Pure functions, any thread.
#pragma once
#include <cstdint>

#include "engine/frame/PlaneView.h"

namespace korvia {

/// Coordinates of samples are fixed point with this many fraction bits; a sample lies at its whole number.
inline constexpr int kSampleFractionBits = 8;
inline constexpr int kSampleOne = 1 << kSampleFractionBits;

/// out[i] = the plane at (x[i], y[i]), bilinear between its four neighbours, rounded; points outside take the
/// nearest edge. A whole point gives exactly its sample. Coordinates are in 1/256 sample, from -2^30 to 2^30.
void sampleRow(const PlaneView& plane, const std::int32_t* x, const std::int32_t* y, std::uint8_t* out,
               int count);

}  // namespace korvia

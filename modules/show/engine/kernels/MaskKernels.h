// Kernels that make masks. Pure functions, any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// mask = level - y * slope for each of `count` columns, rounded and held within 0 to 255. The level and what
/// is subtracted may be of any size that a float holds.
void slopedMaskRow(const float* level, const float* slope, float y, std::uint8_t* mask, int count);

}  // namespace korvia

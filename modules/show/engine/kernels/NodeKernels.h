// Interpolates rows of samples from values at nodes a few samples apart. Pure functions, any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// The levels of a mask at the two node rows around a row.
struct LevelRow {
  /// Largest absolute value of a level.
  static constexpr int kMax = 4095;

  /// The node rows above and below; 16 nodes more than the row has can be read.
  const std::int16_t* upper = nullptr;
  const std::int16_t* lower = nullptr;
  /// Nodes lie `1 << cellBits` samples apart, from sample 0 on: 2 or 3.
  int cellBits = 3;
  /// Distance of this row from the upper node row, less than a cell.
  int down = 0;
};

/// mask[i] = the level at sample i, interpolated between the four nodes around it, limited to 0 to 255.
/// `mask` has room for `count` rounded up to whole cells.
void maskFromNodes(const LevelRow& levels, std::uint8_t* mask, int count);

/// out[i] = row[2 * i]: the mask of a chroma row.
void everySecond(const std::uint8_t* row, std::uint8_t* out, int count);

}  // namespace korvia

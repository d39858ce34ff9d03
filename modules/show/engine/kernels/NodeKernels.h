// Rows of samples from values that are known at nodes a few samples apart. Pure functions, any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// Levels of a mask at nodes.
struct LevelRow {
  /// Greatest level, positive or negative.
  static constexpr int kMax = 4095;

  /// The node rows above and below; 16 nodes more than the row has can be read.
  const std::int16_t* upper = nullptr;
  const std::int16_t* lower = nullptr;
  /// Nodes lie `1 << cellBits` samples apart, from sample 0 on: 2 or 3.
  int cellBits = 3;
  /// How many rows this one lies below the upper node row, less than a cell.
  int down = 0;
};

/// mask[i] = the level at sample i, linear between the four nodes around it, limited to 0 to 255. `mask`
/// takes `count` rounded up to whole cells.
void maskFromNodes(const LevelRow& levels, std::uint8_t* mask, int count);

/// out[i] = row[2 * i]: the mask of a row of chroma.
void everySecond(const std::uint8_t* row, std::uint8_t* out, int count);

}  // namespace korvia

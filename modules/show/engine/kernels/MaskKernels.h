// Kernels that make masks: all results are rounded and limited to 0 to 255. Pure functions, any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// mask = level - y * slope, with a level and a slope for each column.
void slopedMaskRow(const float* level, const float* slope, float y, std::uint8_t* mask, int count);

/// A row of a soft disc: mask = level - slope * sqrt(x * x + ySquare), where x rises from `first` by `step`.
struct DiscRow {
  float first = 0;
  float step = 1;
  float ySquare = 0;
  float level = 0;
  float slope = 0;
};
void discMaskRow(const DiscRow& disc, std::uint8_t* mask, int count);

/// A row of a soft spoke: mask = level + slope * tan(angle between the sample and the spoke). The tangent of
/// the sample is `first` at column 0 and grows by `step`; the tangent of the spoke is `spoke`.
struct SpokeRow {
  float first = 0;
  float step = 1;
  float spoke = 0;
  float level = 0;
  float slope = 0;
};
/// For the columns from `begin` up to, not including, `end`; the value of a column does not depend on
/// `begin`. Writes up to 64 samples past `end`.
void spokeMaskRow(const SpokeRow& spoke, std::uint8_t* mask, int begin, int end);

/// mask = the smaller one of `row` and `most`.
void cappedMaskRow(const std::uint8_t* row, std::uint8_t most, std::uint8_t* mask, int count);

/// mask = (a * (256 - weight) + b * weight + 128) / 256, weight 0 to 256. The stores are ordinary ones,
/// since the mask is read next.
void blendedMaskRow(const std::uint8_t* a, const std::uint8_t* b, int weight, std::uint8_t* mask, int count);

/// The kinds of the blocks of a mask: 0 where all of a block is 0, 255 where all is 255, 1 for any other.
/// `kinds` has room for a value for each block, the last one included that is not full.
inline constexpr int kMaskBlock = 64;
void maskBlockKinds(const std::uint8_t* mask, int count, std::uint8_t* kinds);

}  // namespace korvia

// Kernels that make masks, rounded and held within 0 to 255. Pure functions, any thread.
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

/// A row of a soft spoke: mask = level + slope * tan(angle between the sample and the spoke), where the
/// sample's tangent rises from `first`, at column 0, by `step` and the spoke's is `spoke`.
struct SpokeRow {
  float first = 0;
  float step = 1;
  float spoke = 0;
  float level = 0;
  float slope = 0;
};
/// For the columns from `begin` to before `end`, each with the same value wherever the others begin. Up to 64
/// samples past `end` are written too.
void spokeMaskRow(const SpokeRow& spoke, std::uint8_t* mask, int begin, int end);

/// mask = the less of `row` and `most`.
void cappedMaskRow(const std::uint8_t* row, std::uint8_t most, std::uint8_t* mask, int count);

/// mask = (a * (256 - weight) + b * weight + 128) / 256, weight 0 to 256. Unlike a row of a picture it stays
/// in the cache, from where it is read next.
void blendedMaskRow(const std::uint8_t* a, const std::uint8_t* b, int weight, std::uint8_t* mask, int count);

/// Tells the blocks of a mask: 0 where all of a block is 0, 255 where all is 255, 1 for
/// any other. `kinds` takes a value for each block begun.
inline constexpr int kMaskBlock = 64;
void maskBlockKinds(const std::uint8_t* mask, int count, std::uint8_t* kinds);

}  // namespace korvia

// Kernels for the lines of interlaced pictures. Pure functions, any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// A line of the second field, its neighbours of the first field, and the same three of the picture before.
struct FieldLines {
  const std::uint8_t* line;
  const std::uint8_t* above;
  const std::uint8_t* below;
  const std::uint8_t* lineBefore;
  const std::uint8_t* aboveBefore;
  const std::uint8_t* belowBefore;
};

/// How far a sample may move between two pictures, or stand out of its neighbours, in code values.
inline constexpr int kStillLimit = 8;
inline constexpr int kCombLimit = 4;

/// out[x] for begin <= x < end of a row of `width` samples: the line where it is still or lies between its
/// neighbours, else the neighbours interpolated along an edge of at most one sample to the side.
void joinField(const FieldLines& lines, int begin, int end, int width, std::uint8_t* out);

/// Sums over `count` samples.
struct CombSums {
  std::uint32_t now = 0;     ///< |2 line - above - below|
  std::uint32_t before = 0;  ///< |2 lineBefore - above - below|
  std::uint32_t moved = 0;   ///< |line - lineBefore|
};
/// Adds the sums of `count` samples from `begin` on.
void addCombSums(const FieldLines& lines, int begin, int count, CombSums& sums);

}  // namespace korvia

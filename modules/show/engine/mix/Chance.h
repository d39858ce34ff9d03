// Chance without memory: the same numbers for the same seed, in any order of asking. Pure functions, any
// thread.
#pragma once
#include <algorithm>
#include <bit>
#include <cstdint>

namespace korvia {

/// Every bit of the number spread over all of them, one-to-one. (The finishing step of MurmurHash3.)
constexpr std::uint32_t scattered(std::uint32_t value) {
  value ^= value >> 16;
  value *= 0x85ebca6bU;
  value ^= value >> 13;
  value *= 0xc2b2ae35U;
  return value ^ (value >> 16);
}

/// A number of its own for each seed and index, from 0 to less than 1.
constexpr double chance(std::uint32_t seed, std::uint32_t index) {
  return scattered(scattered(seed) + index * 0x9e3779b9U) / 4294967296.0;
}

/// Where `index` stands when 0 to count - 1 are put in an order that the seed draws.
constexpr std::uint32_t shuffled(std::uint32_t index, std::uint32_t count, std::uint32_t seed) {
  // Each step is one-to-one on the numbers below a power of two; what falls past the count goes round again.
  const std::uint32_t mask = std::bit_ceil(count) - 1;
  const int shift = std::max(1, static_cast<int>(std::bit_width(mask)) / 2);
  do {
    for (std::uint32_t round = 0; round < 4; ++round) {
      const std::uint32_t key = scattered(seed * 4 + round);
      index = (index * (key | 1) + (key >> 16)) & mask;
      index ^= index >> shift;
    }
  } while (index >= count);
  return index;
}

}  // namespace korvia

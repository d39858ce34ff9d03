// Chance without memory: the same numbers for the same seed, in any order of asking. Pure functions, any
// thread.
#pragma once
#include <algorithm>
#include <array>
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

/// The numbers 0 to count - 1 in an order that the seed draws.
class Shuffle {
 public:
  constexpr Shuffle(int count, std::uint32_t seed)
      : count_(static_cast<std::uint32_t>(count)),
        mask_(std::bit_ceil(count_) - 1),
        shift_(std::max(1, static_cast<int>(std::bit_width(mask_)) / 2)) {
    for (std::uint32_t round = 0; round < keys_.size(); ++round)
      keys_[round] = scattered(scattered(seed) + round);
  }

  /// Where `index` stands in the order.
  constexpr int place(int index) const {
    // Each step is one-to-one on the numbers below a power of two; what falls past the count goes round
    // again.
    auto value = static_cast<std::uint32_t>(index);
    do {
      for (const std::uint32_t key : keys_) {
        value = (value * (key | 1) + (key >> 16)) & mask_;
        value ^= value >> shift_;
      }
    } while (value >= count_);
    return static_cast<int>(value);
  }

 private:
  std::uint32_t count_;
  std::uint32_t mask_;
  int shift_;
  std::array<std::uint32_t, 4> keys_{};
};

}  // namespace korvia

// Random numbers as pure functions of a seed and an index: the lever runs transitions in both directions, so
// the numbers must not depend on the order of the calls. Any thread.
#pragma once
#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace korvia {

/// A one-to-one hash of 32 bits: the finalizer of MurmurHash3.
constexpr std::uint32_t hashBits(std::uint32_t value) {
  value ^= value >> 16;
  value *= 0x85ebca6bU;
  value ^= value >> 13;
  value *= 0xc2b2ae35U;
  return value ^ (value >> 16);
}

/// Evenly distributed from 0, included, to 1, excluded.
constexpr double seededRandom(std::uint32_t seed, std::uint32_t index) {
  return hashBits(hashBits(seed) + index * 0x9e3779b9U) / 4294967296.0;
}

/// The same for a place in two dimensions.
constexpr double seededRandom(std::uint32_t seed, int x, int y) {
  return seededRandom(hashBits(seed) + static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y));
}

/// A permutation of the numbers 0 to count - 1 that depends on the seed.
class Shuffle {
 public:
  constexpr Shuffle(int count, std::uint32_t seed)
      : count_(static_cast<std::uint32_t>(count)),
        mask_(std::bit_ceil(count_) - 1),
        shift_(std::max(1, static_cast<int>(std::bit_width(mask_)) / 2)) {
    for (std::uint32_t round = 0; round < keys_.size(); ++round)
      keys_[round] = hashBits(hashBits(seed) + round);
  }

  /// The place of `index` in the permutation.
  constexpr int place(int index) const {
    // Each step is one-to-one on the numbers below a power of two. A result that is not below the count is
    // permuted again.
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

// Asks for memory before it is needed, where rows are not read one after the other and the machine cannot
// foresee what comes next. Any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// Brings `count` samples into the second cache: the first one is too small to hold them beside what is being
/// worked on.
inline void fetchAhead(const std::uint8_t* row, int count) {
  constexpr int kCacheLine = 64;
  constexpr int kForReading = 0;
  constexpr int kSecondCache = 2;
  for (int x = 0; x < count; x += kCacheLine)
    __builtin_prefetch(row + x, kForReading, kSecondCache);
}

}  // namespace korvia

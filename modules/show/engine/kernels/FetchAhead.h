// Software prefetch for access patterns that the hardware prefetcher does not follow. Any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// Prefetches `count` samples into the second-level cache; the first level is too small to hold them beside
/// the rows in use.
inline void fetchAhead(const std::uint8_t* row, int count) {
  constexpr int kCacheLine = 64;
  constexpr int kForReading = 0;
  constexpr int kSecondCache = 2;
  for (int x = 0; x < count; x += kCacheLine)
    __builtin_prefetch(row + x, kForReading, kSecondCache);
}

}  // namespace korvia

// A mix of two rows under moving light, in the widest registers that the machine has. Pure functions, any
// thread.
#pragma once
#include <cstdint>

namespace korvia {

/// Mixes luma like mixMaskedRow() and lights it: out = m + (m - 16) * light / 128, rounded and kept in 0 to
/// 255, so that black stays black and a light of 0 changes nothing. Rows that begin on a vector's boundary
/// are written past the cache.
void mixLitRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask,
               const std::int8_t* light, std::uint8_t* out, int count);

}  // namespace korvia

// Averages samples over an area, for pictures that shrink or lie between the samples. The stores are
// ordinary ones, so the results stay in the cache. Pure functions, any thread.
#pragma once
#include <cstdint>

#include "engine/kernels/ShrinkTable.h"

namespace korvia {

/// out = the weighted mean of the rows, rounded, for `count` samples. The weights add up to 65 to 256; rows
/// of one constant value give exactly that value. `out` may be one of the rows.
void averageRows(const std::uint8_t* const* rows, const std::uint16_t* weights, int rowCount,
                 std::uint8_t* out, int count);

/// out[i] = (row[2 * i] + row[2 * i + 1] + round) / 2 for the (count + 1) / 2 pairs of a row; `round` is 0
/// or 1. The last sample of an odd row is copied.
void halveRow(const std::uint8_t* row, int count, int round, std::uint8_t* out);

/// Shrinks a row by its groups. `out` has room for eight samples more than the groups have.
void shrinkRow(const std::uint8_t* row, const ShrinkGroup* groups, int groupCount, std::uint8_t* out);

}  // namespace korvia

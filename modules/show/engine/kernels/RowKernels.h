// Kernels over rows of samples, in the widest registers that the machine has. Pure functions, any thread.
#pragma once
#include <cstdint>

#include "engine/kernels/ColumnTable.h"

namespace korvia {

/// out = (a * (256 - weight) + b * weight + 128) / 256 for `count` samples; weight 0 to 256. Rows that begin
/// on a vector's boundary are written past the cache: a mixed frame is larger than what the cache should give
/// up.
void mixRow(const std::uint8_t* a, const std::uint8_t* b, int weight, std::uint8_t* out, int count);

/// The same with a weight of its own for each sample: out = (a * (255 - mask) + b * mask) / 255, rounded; 0
/// gives exactly `a`, 255 exactly `b`.
void mixMaskedRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, std::uint8_t* out,
                  int count);

/// Blends a premultiplied row over `row`, in place: row = top + (row - black) * (255 - alpha) / 255, rounded,
/// where `black` is the code value of no colour, 16 for luma and 128 for chroma.
void blendRow(const std::uint8_t* top, const std::uint8_t* alpha, int black, std::uint8_t* row, int count);

/// Scales a row by the table, which must be usable. `out` takes the table's width rounded up to eight.
void scaleRow(const std::uint8_t* row, const ColumnTable& table, std::uint8_t* out);

}  // namespace korvia

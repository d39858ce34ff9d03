// Copies, mixes, blends and scales rows of samples, in the widest registers that the machine has. Pure
// functions, any thread.
#pragma once
#include <cstdint>

#include "engine/kernels/ColumnTable.h"

namespace korvia {

/// Copies `count` samples. Where `out` is aligned to a register the stores are non-temporal: the destination
/// is not read into the cache only to be overwritten, which halves the time of copying a frame by rows.
void copyRowNonTemporal(const std::uint8_t* from, std::uint8_t* out, int count);

/// out = (a * (256 - weight) + b * weight + 128) / 256 for `count` samples; weight 0 to 256. Stores are
/// non-temporal where `out` is aligned to a register.
void mixRow(const std::uint8_t* a, const std::uint8_t* b, int weight, std::uint8_t* out, int count);

/// The same with one weight for each sample: out = (a * (255 - mask) + b * mask) / 255, rounded; 0 gives
/// exactly `a`, 255 exactly `b`.
void mixMaskedRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, std::uint8_t* out,
                  int count);

/// Mixes luma as mixMaskedRow() does and lights it: out = m + (m - 16) * light / 128, rounded and limited to
/// 0 to 255. Black stays black and a light of 0 changes nothing.
void mixMaskedLitRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask,
                     const std::int8_t* light, std::uint8_t* out, int count);

/// Blends a premultiplied row over `row`, in place: row = top + (row - black) * (255 - alpha) / 255, rounded,
/// where `black` is the code value of black: 16 for luma and 128 for chroma.
void blendPremultipliedRow(const std::uint8_t* top, const std::uint8_t* alpha, int black, std::uint8_t* row,
                           int count);

/// Scales a row by the table, which must be usable. `out` takes the table's width rounded up to eight.
void scaleRow(const std::uint8_t* row, const ColumnTable& table, std::uint8_t* out);

}  // namespace korvia

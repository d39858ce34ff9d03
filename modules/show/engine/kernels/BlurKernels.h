// Row loops of the blurs: averages, tap patterns and what lays a blurred small picture over a sharp large
// one. Pure functions, any thread.
#pragma once
#include <array>
#include <cstdint>

namespace korvia {

/// So many samples each way become one in a small picture.
inline constexpr int kShrink = 4;

/// A row of the fade from `a` to `b` at a quarter of the size: out[i] = the mean of 4 x 4 samples, of `b`
/// with `weight` 0 to 256, within 0.51 of exact. `count` is that of the full rows; out takes a quarter of it,
/// rounded up, the last sample standing in for those that lack.
void mixShrunkRow(const std::array<const std::uint8_t*, kShrink>& a,
                  const std::array<const std::uint8_t*, kShrink>& b, int weight, std::uint8_t* out,
                  int count);

/// The way back, bilinear: out[x] for x up to `outCount` at the point (x + 0.5) / 4 - 0.5 of a row between
/// `upper` and `lower`, `lowerWeight` 0 to 8 of 8. The rows have `count` samples, outCount is at most four
/// times that; beyond the ends it takes the nearest. Rounded once.
void enlargeRow(const std::uint8_t* upper, const std::uint8_t* lower, int lowerWeight, int count,
                std::uint8_t* out, int outCount);

/// Puts a soft row over the fade from `a` to `b`: sharp = (a * (256 - weight) + b * weight + 128) / 256,
/// out = (sharp * (255 - mask) + soft * mask) / 255, rounded. Stores are non-temporal where `out` is aligned
/// to a register.
void softenRow(const std::uint8_t* a, const std::uint8_t* b, int weight, const std::uint8_t* soft,
               const std::uint8_t* mask, std::uint8_t* out, int count);

/// out = (a + b + c) / 3, rounded.
void averageOfThreeRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* c, std::uint8_t* out,
                       int count);

/// Where a tap of a pattern reads: between two rows, `right` and `down` 0 to 15 of 16 towards the next sample
/// and the lower row.
struct RowTap {
  const std::uint8_t* upper;
  const std::uint8_t* lower;
  std::uint16_t right;
  std::uint16_t down;
};
inline constexpr int kTapCount = 64;

/// out = the mean of all taps, each bilinear, within 0.63 of exact; equal samples give exactly themselves.
/// Each tap's rows have `count` + 1 samples.
void averageTapsRow(const std::array<RowTap, kTapCount>& taps, std::uint8_t* out, int count);

/// out[x] = the mean of the row over a box round x of `radius256` / 256 samples to each side of the sample,
/// of which the outermost two count by the fraction; radius 0 gives the row. The row begins `radius256` / 256
/// + 1 samples before x = 0 and ends as many behind x = count - 1. `sums` takes one value more than the row
/// has samples.
void boxRow(const std::uint8_t* row, int radius256, std::uint32_t* sums, std::uint8_t* out, int count);

/// sums += row.
void addRow(const std::uint8_t* row, std::uint16_t* sums, int count);

/// Down the columns of five rows with the weights 1, 4, 6, 4, 1: 0 to 4080.
void binomialColumns(const std::array<const std::uint8_t*, 5>& rows, std::uint16_t* out, int count);

/// Differences up to this, in 1/64 code values, are what coding leaves of soft shades: no edges.
inline constexpr int kSharpenCore = 96;

/// Drives each sample away from its surroundings: out = sample + d * gain256 / 256, rounded, where d is the
/// sample less the mean and nearer to 0 by kSharpenCore. The mean weighs `columns`, made by binomialColumns,
/// at -2, -1, 0, 1 and 2 times `spacing` as those did. Stays within `low` and `high`, or at the sample where
/// that lies outside. `columns` begins 2 * spacing values before x = 0 and ends as many behind the last.
/// gain256 is 0 to 16383; 0 gives the row.
void sharpenRow(const std::uint8_t* row, const std::uint16_t* columns, int spacing, int gain256, int low,
                int high, std::uint8_t* out, int count);

}  // namespace korvia

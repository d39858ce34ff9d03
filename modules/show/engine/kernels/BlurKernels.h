// Kernels of the blurs: means, tap patterns, and the mix of an enlarged blurred picture with the sharp one.
// Pure functions, any thread.
#pragma once
#include <array>
#include <cstdint>

namespace korvia {

/// The number of samples across and down that become one in a small picture.
inline constexpr int kShrink = 4;

/// Shrinks a row of the fade from `a` to `b` to a quarter: out[i] = the mean of 4 x 4 samples, with `weight`
/// of `b` 0 to 256, within 0.51 of exact. `count` is that of the full rows; `out` takes a quarter of it,
/// rounded up. The last sample is repeated where samples are missing.
void mixShrunkRow(const std::array<const std::uint8_t*, kShrink>& a,
                  const std::array<const std::uint8_t*, kShrink>& b, int weight, std::uint8_t* out,
                  int count);

/// Enlarges a row by four, bilinear: out[x], x up to `outCount`, is the value at (x + 0.5) / 4 - 0.5 of a
/// row between `upper` and `lower`, with `lowerWeight` 0 to 8 of 8. The rows have `count` samples and
/// outCount is at most four times that. Points past the ends take the nearest sample. Rounded once.
void enlargeRow(const std::uint8_t* upper, const std::uint8_t* lower, int lowerWeight, int count,
                std::uint8_t* out, int outCount);

/// Mixes a blurred row with the fade from `a` to `b`: sharp = (a * (256 - weight) + b * weight + 128) / 256,
/// out = (sharp * (255 - mask) + soft * mask) / 255, rounded. Stores are non-temporal where `out` is aligned
/// to a register.
void softenRow(const std::uint8_t* a, const std::uint8_t* b, int weight, const std::uint8_t* soft,
               const std::uint8_t* mask, std::uint8_t* out, int count);

/// out = (a + b + c) / 3, rounded.
void averageOfThreeRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* c, std::uint8_t* out,
                       int count);

/// A bilinear tap: `right` and `down`, 0 to 15 of 16, are the weights of the next sample and of the lower
/// row.
struct RowTap {
  const std::uint8_t* upper;
  const std::uint8_t* lower;
  std::uint16_t right;
  std::uint16_t down;
};
inline constexpr int kTapCount = 64;

/// out = the mean of all taps, within 0.63 of exact; equal samples give exactly their value. The rows of
/// each tap have `count` + 1 samples.
void averageTapsRow(const std::array<RowTap, kTapCount>& taps, std::uint8_t* out, int count);

/// out[x] = the mean of the row over a box that reaches `radius256` / 256 samples to each side of x; the
/// outermost sample on each side has the weight of the fraction. Radius 0 copies the row. The row begins
/// `radius256` / 256 + 1 samples before x = 0 and ends as many after x = count - 1. `sums` has room for one
/// value more than the row has samples.
void boxRow(const std::uint8_t* row, int radius256, std::uint32_t* sums, std::uint8_t* out, int count);

/// sums += row.
void addRow(const std::uint8_t* row, std::uint16_t* sums, int count);

/// out = the sum of five rows with the weights 1, 4, 6, 4, 1: 0 to 4080.
void binomialColumns(const std::array<const std::uint8_t*, 5>& rows, std::uint16_t* out, int count);

/// Differences up to this, in 1/64 code values, are coding noise of smooth areas and are not sharpened.
inline constexpr int kSharpenCore = 96;

/// Unsharp mask: out = sample + d * gain256 / 256, rounded, where d is the sample minus the mean, moved
/// towards 0 by kSharpenCore. The mean weighs the values of `columns`, made by binomialColumns(), at -2, -1,
/// 0, 1 and 2 times `spacing` with 1, 4, 6, 4, 1. The result is limited to `low` and `high`, or to the
/// sample itself where that is outside. `columns` begins 2 * spacing values before x = 0 and ends as many
/// after the last. gain256 is 0 to 16383; 0 copies the row.
void sharpenRow(const std::uint8_t* row, const std::uint16_t* columns, int spacing, int gain256, int low,
                int high, std::uint8_t* out, int count);

}  // namespace korvia

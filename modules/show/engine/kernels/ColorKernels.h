// Kernels of the transitions that work on the colours of a picture, over rows of samples. Pure functions, any
// thread. No row may overlap another, unless said. Unless said otherwise a weight is 0 to 255 and weighs as
// mixMaskedRow() does: 0 gives exactly the first sample, 255 exactly the second. The mixes write rows of
// frames, past the cache where these begin on a vector's boundary.
#pragma once
#include <cstdint>

namespace korvia {

/// Soft threshold of luma: out = gain * luma - threshold, held in 0 to 255. Luma counts as 16 to 235, since
/// nothing visible lies outside. `gain` 1 to 8, `threshold` from -255 to gain * 235.
void thresholdRow(const std::uint8_t* luma, int gain, int threshold, std::uint8_t* out, int count);

/// How much the second picture is the brighter one: out = 128 + 4 * (b - a), held in 0 to 255.
void brighterRow(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int count);

/// Fades a key in and its opposite after it, in place: key = (key * rise + (255 - key) * fall + 128) / 256;
/// weights 0 to 256.
void fadeKeyRow(int rise, int fall, std::uint8_t* key, int count);

/// Weight of the soft edge in a mask: out = mask * (255 - mask) / 256, 63 at the most, and 0 where the mask
/// is 0 or 255.
void edgeRow(const std::uint8_t* mask, std::uint8_t* out, int count);

/// Weight of the shade in a relief: out = (255 - relief) * depth / 256; `depth` 0 to 256.
void shadeRow(const std::uint8_t* relief, int depth, std::uint8_t* out, int count);

/// The mean of the samples that lie about each chroma sample, rounded: of two rows, or of one given twice, of
/// `width` samples. Writes (width + 1) / 2; the last one of an odd width has its own column only.
void chromaMeanRow(const std::uint8_t* upper, const std::uint8_t* lower, std::uint8_t* out, int width);

/// A row on its way to its negative: `weight` tells how far.
struct TurningRow {
  const std::uint8_t* samples;
  const std::uint8_t* weight;
};

/// Mixes two rows, both turned as far as they are, as mixRow() does: `weight` 0 to 256. The negative of a
/// sample is `ends` - sample, held in 0 to 255; `ends` is the sum of the range's two ends, 0 to 510.
void mixTurningRow(const TurningRow& a, const TurningRow& b, int ends, int weight, std::uint8_t* out,
                   int count);

/// Mixes by `mask`, and what comes of it with the code value `target`, 0 to 255, by `weight`.
void mixTowardsRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, int target,
                   const std::uint8_t* weight, std::uint8_t* out, int count);

/// Product of two rows of luma: 16 stays black, and 235 leaves the other one as it is.
void multiplyLumaRow(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int count);

/// Chroma of that product, held in 16 to 240: that of each picture, as far as the other one is bright there.
/// The luma rows hold a sample at each chroma sample's place.
void multiplyChromaRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* lumaA,
                       const std::uint8_t* lumaB, std::uint8_t* out, int count);

/// From `a` over `middle` to `b`: on the way from 0 to 255 exactly `a`, `middle` half-way, exactly `b`.
void mixOverRow(const std::uint8_t* a, const std::uint8_t* middle, const std::uint8_t* b,
                const std::uint8_t* way, std::uint8_t* out, int count);

}  // namespace korvia

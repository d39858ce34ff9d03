// Kernels over rows of samples for the transitions that depend on the colours of the pictures. Pure
// functions, any thread. Where a function says nothing else, rows must not overlap, and weights are 0 to
// 255, from exactly the first sample to exactly the second. The functions named mix... write rows of frames:
// their stores are non-temporal where `out` is aligned to a register.
#pragma once
#include <cstdint>

namespace korvia {

/// Soft threshold of luma: out = gain * luma - threshold, limited to 0 to 255. Luma is limited to 16 to 235
/// first. `gain` 1 to 8, `threshold` from -255 to gain * 235.
void thresholdRow(const std::uint8_t* luma, int gain, int threshold, std::uint8_t* out, int count);

/// A key that is high where `b` is brighter than `a`: out = 128 + 4 * (b - a), limited to 0 to 255.
void brighterRow(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int count);

/// Fades a key in and then its inverse, in place: key = (key * rise + (255 - key) * fall + 128) / 256;
/// weights 0 to 256.
void fadeKeyRow(int rise, int fall, std::uint8_t* key, int count);

/// A key of the soft edges of a mask: out = mask * (255 - mask) / 256; 0 where the mask is 0 or 255, at most
/// 63.
void edgeRow(const std::uint8_t* mask, std::uint8_t* out, int count);

/// A key of the shade in a relief: out = (255 - relief) * depth / 256; `depth` 0 to 256.
void shadeRow(const std::uint8_t* relief, int depth, std::uint8_t* out, int count);

/// Subsamples two rows of luma, or one given twice, to a row of chroma: out = the rounded mean of the four
/// samples around each chroma sample. Writes (width + 1) / 2 samples; the last one of an odd width is the
/// mean of one column.
void chromaMeanRow(const std::uint8_t* upper, const std::uint8_t* lower, std::uint8_t* out, int width);

/// A row of samples, and for each sample the weight of its inverse.
struct PartlyInvertedRow {
  const std::uint8_t* samples;
  const std::uint8_t* weight;
};

/// Mixes each row with its inverse and then the two results as mixRow() does, with `weight` 0 to 256. The
/// inverse of a sample is `ends` - sample, limited to 0 to 255; `ends` is the sum of the lowest and the
/// highest code value, 0 to 510.
void mixPartlyInvertedRow(const PartlyInvertedRow& a, const PartlyInvertedRow& b, int ends, int weight,
                          std::uint8_t* out, int count);

/// Mixes `a` and `b` by `mask`, and the result with the code value `target`, 0 to 255, by `weight`.
void mixTowardsRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, int target,
                   const std::uint8_t* weight, std::uint8_t* out, int count);

/// Multiplies two rows of luma: 16 counts as 0 and 235 as 1.
void multiplyLumaRow(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int count);

/// The chroma of that product, limited to 16 to 240: the sum of each picture's chroma times the other's
/// luma. The luma rows are subsampled to the size of chroma.
void multiplyChromaRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* lumaA,
                       const std::uint8_t* lumaB, std::uint8_t* out, int count);

/// Mixes from `a` over `middle` to `b`: `way` is 0 at exactly `a`, half-way at `middle`, 255 at exactly `b`.
void mixOverRow(const std::uint8_t* a, const std::uint8_t* middle, const std::uint8_t* b,
                const std::uint8_t* way, std::uint8_t* out, int count);

}  // namespace korvia

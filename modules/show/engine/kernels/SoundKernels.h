// Gains, sums, peaks and conversions of rows of sound samples, in the widest registers that the machine has.
// Pure functions, any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// Multiplies `count` samples, in place, by a gain that goes linearly to `to`, which the last sample gets,
/// from `from`, which the sample before the first one had. A gain of exactly 1 throughout changes nothing.
void scaleRamped(float* samples, float from, float to, int count);

/// Adds the samples of `in`, multiplied as by scaleRamped(), to `out`.
void addRamped(const float* in, float from, float to, float* out, int count);

/// The largest absolute value of `count` samples, 0 for none. Infinite when one of them is infinite, not a
/// number when one is not.
float peakOf(const float* samples, int count);

/// Samples that interpolatedPeaks() reads before and after a sample.
inline constexpr int kInterpolationReach = 6;

/// Raises peaks[i] to the largest absolute value between sample i and sample i + 1, both included, by
/// oversampling four times (ITU-R BS.1770, annex 2). Between samples the interpolation is a sinc with a Hann
/// window of 49 taps, which is that of libebur128. Reads samples[-kInterpolationReach] to before
/// samples[count + kInterpolationReach].
void interpolatedPeaks(const float* samples, float* peaks, int count);

/// Interleaves both sides as 16-bit numbers, rounded and limited; 1 is 32767. `out` takes 2 * count numbers.
void interleave16(const float* left, const float* right, std::int16_t* out, int count);

}  // namespace korvia

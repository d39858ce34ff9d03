// Conversions between time and samples at 48 kHz, rounded to the nearest, without overflow for shows that run
// for years. Plain functions, any thread.
#pragma once
#include <cstdint>

#include "StereoSpan.h"

namespace korvia {

/// Duration of `samples`, which may be negative.
inline std::int64_t nsOfSamples(std::int64_t samples) {
  constexpr std::int64_t kSecondNs = 1'000'000'000;
  const std::int64_t part = samples % kSampleRate * kSecondNs;
  const std::int64_t half = part < 0 ? -kSampleRate / 2 : kSampleRate / 2;
  return samples / kSampleRate * kSecondNs + (part + half) / kSampleRate;
}

/// Samples that last `ns`, which may be negative.
inline std::int64_t samplesInNs(std::int64_t ns) {
  constexpr std::int64_t kSecondNs = 1'000'000'000;
  const std::int64_t part = ns % kSecondNs * kSampleRate;
  const std::int64_t half = part < 0 ? -kSecondNs / 2 : kSecondNs / 2;
  return ns / kSecondNs * kSampleRate + (part + half) / kSecondNs;
}

}  // namespace korvia

// A frame rate as a fraction, with exact conversions between frames, time and samples: rounded down, without
// overflow for shows that run for years. A plain value, any thread.
#pragma once
#include <cstdint>

namespace korvia {

struct FrameRate {
  /// Frames per second as numerator / denominator; both from 1 to kPartMax.
  std::int64_t numerator = 25;
  std::int64_t denominator = 1;

  static constexpr std::int64_t kPartMax = 2'000'000;
  static constexpr std::int64_t kFramesPerSecondMax = 1000;

  bool isValid() const {
    return numerator > 0 && denominator > 0 && numerator <= kPartMax && denominator <= kPartMax &&
           numerator <= denominator * kFramesPerSecondMax;
  }
  double framesPerSecond() const { return static_cast<double>(numerator) / static_cast<double>(denominator); }
  /// Duration of `frames`.
  std::int64_t nsOf(std::int64_t frames) const { return unitsOf(frames, kSecondNs); }
  /// Whole frames within `ns`.
  std::int64_t framesIn(std::int64_t ns) const {
    return (ns / kSecondNs * numerator + ns % kSecondNs * numerator / kSecondNs) / denominator;
  }
  /// The number of samples, at `sampleRate` Hz, of `count` frames from frame `firstFrame` on. Computed as
  /// the difference of two positions, so that adjacent ranges neither overlap nor leave a sample out: at
  /// 30000/1001 and 48 kHz that is 1601 or 1602 for each frame.
  std::int64_t samplesIn(std::int64_t firstFrame, std::int64_t count, std::int64_t sampleRate) const {
    return unitsOf(firstFrame + count, sampleRate) - unitsOf(firstFrame, sampleRate);
  }

  friend bool operator==(const FrameRate&, const FrameRate&) = default;

 private:
  static constexpr std::int64_t kSecondNs = 1'000'000'000;

  /// The units of a clock, with `perSecond` units a second, that `frames` last.
  std::int64_t unitsOf(std::int64_t frames, std::int64_t perSecond) const {
    const std::int64_t parts = frames * denominator;
    return parts / numerator * perSecond + parts % numerator * perSecond / numerator;
  }
};

}  // namespace korvia

// A frame rate as a fraction, and exact turns between frames and time: floored to the nanosecond, and good
// for shows that run for years. A plain value, any thread.
#pragma once
#include <cstdint>

namespace korvia {

struct FrameRate {
  /// Frames per second as numerator / denominator; both from 1 to 2'000'000.
  std::int64_t numerator = 25;
  std::int64_t denominator = 1;

  /// Time that `frames` last.
  std::int64_t nsOf(std::int64_t frames) const {
    const std::int64_t units = frames * denominator;
    return units / numerator * kSecondNs + units % numerator * kSecondNs / numerator;
  }
  /// Whole frames within `ns`.
  std::int64_t framesIn(std::int64_t ns) const {
    return (ns / kSecondNs * numerator + ns % kSecondNs * numerator / kSecondNs) / denominator;
  }

 private:
  static constexpr std::int64_t kSecondNs = 1'000'000'000;
};

}  // namespace korvia

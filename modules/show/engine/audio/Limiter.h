// A look-ahead limiter with true peaks: no sound between the samples gets above its ceiling either, so that
// an encoder or a converter behind it does not clip. Below the ceiling it only delays. It knows a peak before
// it comes, so that the gain goes down smoothly until the peak and slowly up afterwards. Allocates when it is
// made; one thread at a time.
#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include "engine/audio/StereoBlock.h"
#include "engine/kernels/SoundKernels.h"

namespace korvia {

class Limiter {
 public:
  /// -1 dBTP, true peak.
  static constexpr double kCeilingDb = -1;
  /// The gain goes down for this long before a peak: 2.7 ms.
  static constexpr int kAttackSamples = 128;
  /// The gain comes back with this time constant.
  static constexpr double kReleaseMs = 80;
  /// What comes out came in this many samples before, 2.9 ms. Outputs count that off their time stamps.
  /// On devices nobody notices it: late sound is noticed from about 125 ms on (ITU-R BT.1359).
  static constexpr int kLatencySamples = kAttackSamples - 1 + 2 * kInterpolationReach;

  Limiter();

  /// Limits the block in place; at most kBlockSamplesMax samples.
  void process(StereoSpan block);
  /// Forgets the sound that is still inside, and the gain.
  void reset();

 private:
  // Gains are fixed-point numbers, whose sums are exact: when the gains are 1 again, so is their average.
  using Gain = std::int32_t;
  static constexpr Gain kOne = 1 << 30;
  // The least gain near a peak is held for the samples that interpolation takes into the peak on both sides.
  static constexpr int kHoldSamples = kAttackSamples + 2 * kInterpolationReach;
  /// The gain that brings a peak down to the ceiling.
  static Gain gainFor(float peak);
  /// The least of the last kHoldSamples gains, this one included.
  Gain heldMinimum(Gain gain);
  /// The gain for the sample that goes out as `wanted` comes in.
  float nextGain(Gain wanted);

  struct Candidate {
    Gain gain = kOne;
    std::int64_t at = 0;
  };

  std::array<std::vector<float>, 2> delay_;  // left and right: what waits to go out, then the block
  std::vector<float> peaks_;
  // The gains that can still become the least, rising from the oldest on: a ring of `candidateCount_` from
  // `firstCandidate_` on.
  static constexpr int kCandidates = 256;
  static_assert(kHoldSamples < kCandidates);
  std::array<Candidate, kCandidates> candidates_;
  int firstCandidate_ = 0;
  int candidateCount_ = 0;
  std::int64_t position_ = 0;
  double released_ = kOne;
  std::array<Gain, kAttackSamples> recent_;  // the gains that are averaged
  int recentPlace_ = 0;
  std::int64_t recentSum_ = 0;
};

}  // namespace korvia

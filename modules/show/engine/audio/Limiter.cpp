#include "Limiter.h"

#include <algorithm>
#include <cmath>

namespace korvia {

namespace {

// The gain changes slowly, yet it changes what lies between the samples; this margin is for that.
constexpr double kMarginDb = 0.05;
const float kThreshold = static_cast<float>(std::pow(10.0, (Limiter::kCeilingDb - kMarginDb) / 20));
const double kReleaseStep = 1 - std::exp(-1000.0 / (Limiter::kReleaseMs * kSampleRate));

}  // namespace

Limiter::Limiter() : peaks_(kBlockSamplesMax) {
  for (std::vector<float>& side : delay_)
    side.resize(kLatencySamples + kBlockSamplesMax);
  reset();
}

void Limiter::reset() {
  for (std::vector<float>& side : delay_)
    std::fill(side.begin(), side.end(), 0.0F);
  firstCandidate_ = 0;
  candidateCount_ = 0;
  released_ = kOne;
  recent_.fill(kOne);
  recentSum_ = std::int64_t{kOne} * kAttackSamples;
}

void Limiter::process(StereoSpan block) {
  const auto count = static_cast<std::size_t>(block.samples);
  std::fill_n(peaks_.begin(), count, 0.0F);
  const std::array<float*, 2> sides{block.left, block.right};
  for (std::size_t side = 0; side < sides.size(); ++side) {
    std::copy_n(sides[side], count, delay_[side].data() + kLatencySamples);
    // The peaks of the newest samples need samples that have not come yet.
    interpolatedPeaks(delay_[side].data() + kLatencySamples - kInterpolationReach, peaks_.data(),
                      block.samples);
  }
  for (std::size_t i = 0; i < count; ++i) {
    const float gain = nextGain(gainFor(peaks_[i]));
    block.left[i] = delay_[0][i] * gain;
    block.right[i] = delay_[1][i] * gain;
  }
  for (std::vector<float>& side : delay_)
    std::copy_n(side.data() + count, kLatencySamples, side.data());
}

Limiter::Gain Limiter::gainFor(float peak) {
  return peak <= kThreshold ? kOne : static_cast<Gain>(kOne * (double{kThreshold} / peak));
}

Limiter::Gain Limiter::heldMinimum(Gain gain) {
  const auto candidate = [this](int i) -> Candidate& {
    return candidates_[static_cast<std::size_t>(firstCandidate_ + i) % kCandidates];
  };
  while (candidateCount_ > 0 && candidate(candidateCount_ - 1).gain >= gain)
    --candidateCount_;
  candidate(candidateCount_++) = {gain, position_};
  if (candidate(0).at <= position_ - kHoldSamples) {
    firstCandidate_ = (firstCandidate_ + 1) % kCandidates;
    --candidateCount_;
  }
  ++position_;
  return candidate(0).gain;
}

float Limiter::nextGain(Gain wanted) {
  const Gain least = heldMinimum(wanted);
  if (least <= released_)
    released_ = least;
  else
    released_ += (least - released_) * kReleaseStep;
  // An average of gains that are all low enough is low enough, and its line down to the peak is straight.
  const auto gain = static_cast<Gain>(released_);
  recentSum_ += gain - recent_[static_cast<std::size_t>(recentPlace_)];
  recent_[static_cast<std::size_t>(recentPlace_)] = gain;
  recentPlace_ = (recentPlace_ + 1) % kAttackSamples;
  return static_cast<float>(static_cast<double>(recentSum_) / (double{kOne} * kAttackSamples));
}

}  // namespace korvia

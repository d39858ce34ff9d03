#include "SoundMix.h"

#include <algorithm>
#include <cstdlib>

namespace korvia {

namespace {

constexpr std::int64_t kSecondNs = 1'000'000'000;
constexpr std::int64_t kRate = 48000;
// The stamps of a page's sound are those of its arrival, which jitters by less.
constexpr std::int64_t kJitterFrames = kRate / 10;
// A stream that is stamped further ahead is wrong.
constexpr std::int64_t kMostWaiting = kRate;

std::int64_t frameAt(std::int64_t timeNs) {
  return timeNs / kSecondNs * kRate + timeNs % kSecondNs * kRate / kSecondNs;
}

std::int64_t timeOf(std::int64_t frame) {
  return frame / kRate * kSecondNs + frame % kRate * kSecondNs / kRate;
}

}  // namespace

void SoundMix::add(const void* stream, const float* samples, int frames, std::int64_t stampNs) {
  const MutexLock lock(mutex_);
  const std::int64_t stamped = frameAt(stampNs);
  std::int64_t& next = nextFrames_.try_emplace(stream, stamped).first->second;
  if (std::abs(stamped - next) > kJitterFrames)
    next = stamped;
  if (waiting_.empty())
    firstFrame_ = std::max(firstFrame_, next);
  const std::int64_t end = next + frames - firstFrame_;
  if (end > 0 && end <= kMostWaiting) {
    waiting_.resize(std::max(waiting_.size(), static_cast<std::size_t>(end) * 2));
    for (std::int64_t i = std::max<std::int64_t>(0, firstFrame_ - next); i < frames; ++i) {
      const auto to = static_cast<std::size_t>(next - firstFrame_ + i) * 2;
      waiting_[to] += samples[i * 2];
      waiting_[to + 1] += samples[i * 2 + 1];
    }
  }
  next += frames;
  hand(stampNs);
}

void SoundMix::flush(std::int64_t nowNs) {
  const MutexLock lock(mutex_);
  hand(nowNs);
}

void SoundMix::hand(std::int64_t nowNs) {
  const std::int64_t due = frameAt(nowNs - kWaitNs) - firstFrame_;
  const auto frames =
      static_cast<int>(std::clamp<std::int64_t>(due, 0, static_cast<std::int64_t>(waiting_.size() / 2)));
  if (frames == 0)
    return;
  taker_(waiting_.data(), frames, timeOf(firstFrame_));
  waiting_.erase(waiting_.begin(), waiting_.begin() + frames * 2);
  firstFrame_ += frames;
}

}  // namespace korvia

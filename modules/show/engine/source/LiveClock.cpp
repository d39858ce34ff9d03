#include "LiveClock.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace korvia {

namespace {

// The source counts anew when a stamp goes back by more than kBackNs, or when data come earlier than expected
// by more than kEarlyNs.
constexpr std::int64_t kBackNs = 500'000'000;
constexpr std::int64_t kEarlyNs = 100'000'000;
// When all data come too late for kLateForNs and do not catch up by kCatchesUpNs, their delay becomes the
// expected one.
constexpr std::int64_t kLateForNs = 1'000'000'000;
constexpr std::int64_t kCatchesUpNs = 100'000'000;
// When data come too late in so many windows one after the other, the target latency is raised by the most of
// it. What has stalled once is late in one window or two.
constexpr std::int64_t kJitterWindowNs = 1'000'000'000;
constexpr int kLateWindowsOfJitter = 4;
constexpr std::int64_t kJitterReserveNs = 10'000'000;
constexpr std::int64_t kMostExtraNs = 500'000'000;
// Time approaches the measured one with the time constant kFollowNs, and runs at most kMostSlew faster or
// slower than the source. A difference above kSlewNs is corrected at once.
constexpr double kFollowNs = 8e9;
constexpr double kMostSlew = 0.005;
constexpr std::int64_t kSlewNs = 100'000'000;

}  // namespace

std::int64_t LiveClock::arrive(std::int64_t stampNs, std::int64_t arrivalNs, Stream stream) {
  MutexLock lock(mutex_);
  if (!shiftNs_)
    shiftNs_ = arrivalNs - stampNs;
  const std::int64_t expectedNs = estimator_.transitAt(arrivalNs);
  const std::int64_t beyondNs = arrivalNs - (stampNs + *shiftNs_) - expectedNs;
  auto& lastStampNs = lastStampNs_[static_cast<std::size_t>(stream)];
  if (std::exchange(anew_, false) || isJump(stampNs, beyondNs, lastStampNs.value_or(stampNs)))
    reanchor(beyondNs);
  else if (isLateForLong(arrivalNs, beyondNs))
    reanchor(lateLeastNs_);
  else
    adaptToJitter(beyondNs, arrivalNs);
  lastStampNs = stampNs;
  const std::int64_t timeNs = stampNs + *shiftNs_;
  estimator_.add(arrivalNs - timeNs, arrivalNs);
  return timeNs;
}

void LiveClock::beginStamps() {
  MutexLock lock(mutex_);
  lastStampNs_ = {};
  anew_ = shiftNs_.has_value();
}

bool LiveClock::isJump(std::int64_t stampNs, std::int64_t beyondNs, std::int64_t lastStampNs) const {
  return stampNs < lastStampNs - kBackNs || (estimator_.isSettled() && beyondNs < -kEarlyNs);
}

bool LiveClock::isLateForLong(std::int64_t arrivalNs, std::int64_t beyondNs) {
  if (beyondNs <= targetNs()) {
    lateSinceNs_.reset();
    return false;
  }
  if (!lateSinceNs_ || beyondNs < lateFirstNs_ - kCatchesUpNs) {
    lateSinceNs_ = arrivalNs;
    lateFirstNs_ = lateLeastNs_ = beyondNs;
  }
  lateLeastNs_ = std::min(lateLeastNs_, beyondNs);
  return arrivalNs - *lateSinceNs_ >= kLateForNs;
}

void LiveClock::adaptToJitter(std::int64_t beyondNs, std::int64_t arrivalNs) {
  if (arrivalNs - windowStartNs_ >= kJitterWindowNs) {
    windowStartNs_ = arrivalNs;
    lateWindows_ = std::exchange(lateInWindow_, false) ? lateWindows_ + 1 : 0;
    if (lateWindows_ == 0)
      mostLateNs_ = 0;
    if (lateWindows_ == kLateWindowsOfJitter) {
      extraNs_ = std::min(kMostExtraNs, extraNs_ + mostLateNs_ + kJitterReserveNs);
      lateWindows_ = 0;
      mostLateNs_ = 0;
    }
  }
  const std::int64_t lateNs = beyondNs - targetNs();
  // What a connection sends first may be old.
  if (!estimator_.isSettled() || lateNs <= 0 || lateNs > kMostExtraNs)
    return;
  lateInWindow_ = true;
  mostLateNs_ = std::max(mostLateNs_, lateNs);
}

void LiveClock::reanchor(std::int64_t beyondNs) {
  *shiftNs_ += beyondNs;
  estimator_.beginSegment();
  lateSinceNs_.reset();
  ++reanchors_;
}

void LiveClock::setHold(bool hold) {
  MutexLock lock(mutex_);
  hold_ = hold;
}

ClockReading LiveClock::advance(int ticks, std::int64_t nowNs) {
  MutexLock lock(mutex_);
  const std::int64_t undelayedNs = nowNs - estimator_.transitAt(nowNs);
  if (shiftNs_) {
    const auto passedNs = static_cast<double>(rate_.nsOf(ticks));
    timeNs_ += std::llround(passedNs * (1 + estimator_.driftPpm() * 1e-6));
    const std::int64_t offNs = undelayedNs - targetNs() - timeNs_;
    if (!started_ || std::abs(offNs) > kSlewNs)
      timeNs_ += offNs;
    else
      timeNs_ +=
          std::llround(passedNs * std::clamp(static_cast<double>(offNs) / kFollowNs, -kMostSlew, kMostSlew));
    started_ = true;
    tickNs_ = nowNs;
    latencyNs_ = undelayedNs - timeNs_;
  }
  ClockReading reading;
  reading.timeNs = timeNs_;
  reading.frameNs = rate_.nsOf(1);
  reading.latencyNs = latencyNs_;
  reading.ticks = ticks;
  reading.started = started_;
  reading.running = !hold_;
  return reading;
}

std::optional<std::int64_t> LiveClock::shownNs(std::int64_t stampNs) const {
  MutexLock lock(mutex_);
  if (!started_ || !shiftNs_ || anew_)
    return std::nullopt;
  return tickNs_ + stampNs + *shiftNs_ - timeNs_;
}

LiveClock::Figures LiveClock::figures() const {
  MutexLock lock(mutex_);
  return {estimator_.driftPpm(), latencyNs_, reanchors_, extraNs_};
}

}  // namespace korvia

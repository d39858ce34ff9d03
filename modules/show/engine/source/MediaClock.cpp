#include "MediaClock.h"

#include <algorithm>

namespace korvia {

namespace {

// When data are later than this, the clock goes back to them, because skipping would not catch up.
constexpr std::int64_t kLatestNs = 1'000'000'000;

}  // namespace

void MediaClock::setPlaying(bool playing) {
  MutexLock lock(mutex_);
  playing_ = playing;
}

void MediaClock::setHold(bool hold) {
  MutexLock lock(mutex_);
  hold_ = hold;
}

std::uint64_t MediaClock::flush() {
  MutexLock lock(mutex_);
  begun_ = 0;
  firstNs_.reset();
  firstPictureNs_.reset();
  lateNs_.reset();
  started_ = false;
  return ++epoch_;
}

int MediaClock::addQueue() {
  MutexLock lock(mutex_);
  return queues_++;
}

void MediaClock::begin(int queue, std::uint64_t epoch, std::int64_t timeNs) {
  MutexLock lock(mutex_);
  if (epoch != epoch_)
    return;
  begun_ |= 1u << queue;
  if (!started_)
    firstNs_ = std::min(firstNs_.value_or(timeNs), timeNs);
  if (queue == 0)
    firstPictureNs_ = timeNs;
}

void MediaClock::beginWithout(int queue, std::uint64_t epoch) {
  MutexLock lock(mutex_);
  if (epoch == epoch_)
    begun_ |= 1u << queue;
}

void MediaClock::beginNow(std::uint64_t epoch) {
  MutexLock lock(mutex_);
  if (epoch == epoch_)
    begun_ = ~0u;
}

ClockReading MediaClock::advance(int ticks) {
  MutexLock lock(mutex_);
  const std::uint32_t all = (1u << queues_) - 1;
  const bool running = playing_ && !hold_;
  if (!started_) {
    if (firstNs_ && (begun_ & all) == all) {
      setTime(startNs());
      started_ = true;
    }
  } else if (running) {
    if (lateNs_)
      setTime(*lateNs_);
    lateNs_.reset();
    framesSinceAnchor_ += ticks;
  }
  ClockReading reading;
  reading.timeNs = timeNs();
  reading.frameNs = rate_.nsOf(1);
  reading.epoch = epoch_;
  reading.ticks = ticks;
  reading.started = started_;
  reading.running = running;
  return reading;
}

void MediaClock::tellLate(const ClockReading& reading, std::int64_t timeNs) {
  if (reading.timeNs - timeNs <= kLatestNs)
    return;
  MutexLock lock(mutex_);
  if (reading.epoch == epoch_)
    lateNs_ = std::min(lateNs_.value_or(timeNs), timeNs);
}

std::int64_t MediaClock::startNs() const {
  const std::int64_t earlyNs = firstPictureNs_.value_or(*firstNs_) - *firstNs_;
  if (earlyNs <= 0)
    return *firstNs_;
  // Rounded up, so that the time is not later than the first data.
  const std::int64_t frames = rate_.framesIn(earlyNs + rate_.nsOf(1) - 1);
  return *firstPictureNs_ - rate_.nsOf(frames);
}

std::int64_t MediaClock::timeNs() const {
  return anchorNs_ + rate_.nsOf(framesSinceAnchor_);
}

void MediaClock::setTime(std::int64_t timeNs) {
  anchorNs_ = timeNs;
  framesSinceAnchor_ = 0;
}

}  // namespace korvia

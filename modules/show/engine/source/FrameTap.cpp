#include "FrameTap.h"

#include <algorithm>

namespace korvia {

namespace {

// Later than this, the clock waits for the film instead of skipping after it.
constexpr std::int64_t kLatestNs = 1'000'000'000;

}  // namespace

FrameTap::FrameTap(FrameRate rate, Limits limits) : rate_(rate), limits_(limits) {
  const auto most = static_cast<std::size_t>(std::max(limits.frames, limits.mostFrames));
  queue_.reserve(most);
  skipped_.reserve(most);
}

bool FrameTap::isFull() const {
  const int count = static_cast<int>(queue_.size());
  if (count < limits_.frames)
    return false;
  return count >= limits_.mostFrames || queue_.back().timeNs - queue_.front().timeNs >= limits_.spanNs;
}

bool FrameTap::push(TimedFrame frame) {
  std::unique_lock lock(mutex_);
  room_.wait(lock, [this] { return closed_ || flushing_ || !isFull(); });
  if (closed_ || flushing_)
    return false;
  ended_ = false;
  drained_ = false;
  queue_.push_back(std::move(frame));
  return true;
}

void FrameTap::beginFlush() {
  std::vector<TimedFrame> dropped;  // its memory goes back outside of the lock
  {
    std::lock_guard lock(mutex_);
    flushing_ = true;
    ended_ = false;
    drained_ = false;
    firstSetsClock_ = true;
    dropped.swap(queue_);
  }
  room_.notify_all();
}

void FrameTap::endFlush() {
  std::lock_guard lock(mutex_);
  flushing_ = false;
}

void FrameTap::markEnd(std::int64_t endNs) {
  std::lock_guard lock(mutex_);
  ended_ = true;
  endNs_ = endNs;
}

void FrameTap::close() {
  std::vector<TimedFrame> dropped;
  {
    std::lock_guard lock(mutex_);
    closed_ = true;
    dropped.swap(queue_);
  }
  room_.notify_all();
}

void FrameTap::setPlaying(bool playing) {
  std::lock_guard lock(mutex_);
  playing_ = playing;
}

void FrameTap::setHold(bool hold) {
  std::lock_guard lock(mutex_);
  hold_ = hold;
}

bool FrameTap::isDrained() const {
  std::lock_guard lock(mutex_);
  return drained_;
}

std::int64_t FrameTap::clockNs() const {
  return anchorNs_ + rate_.nsOf(framesSinceAnchor_);
}

void FrameTap::setClock(std::int64_t timeNs) {
  anchorNs_ = timeNs;
  framesSinceAnchor_ = 0;
}

FrameTap::Pull FrameTap::pull(int ticks) {
  TimedFrame replaced;
  Pull result;
  {
    std::lock_guard lock(mutex_);
    const bool running = playing_ && !hold_;
    if (firstSetsClock_) {
      if (!queue_.empty()) {
        replaced = std::exchange(shown_, std::move(queue_.front()));
        queue_.erase(queue_.begin());
        setClock(shown_.timeNs);
        firstSetsClock_ = false;
        result.fresh = true;
      } else {
        result.missed = running && !ended_;
      }
    } else if (running) {
      framesSinceAnchor_ += ticks;
      // A quarter of a render frame forgives rounded time stamps.
      const std::int64_t dueNs = clockNs() + rate_.nsOf(1) / 4;
      while (!queue_.empty() && queue_.front().timeNs <= dueNs) {
        if (result.fresh)
          skipped_.push_back(std::move(shown_));
        else
          replaced = std::move(shown_);
        shown_ = std::move(queue_.front());
        queue_.erase(queue_.begin());
        result.fresh = true;
      }
      if (result.fresh && clockNs() - shown_.timeNs > kLatestNs)
        setClock(shown_.timeNs);
      result.missed = !result.fresh && queue_.empty() && !ended_;
    }
    if (ended_ && !drained_ && running && queue_.empty() && (firstSetsClock_ || clockNs() >= endNs_)) {
      drained_ = true;
      result.drained = true;
    }
    result.frame = shown_.frame;
    result.mediaNs = shown_.mediaNs;
  }
  skipped_.clear();
  if (result.fresh)
    room_.notify_one();
  return result;
}

}  // namespace korvia

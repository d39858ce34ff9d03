#include "VideoQueue.h"

#include <algorithm>

namespace korvia {

namespace {

// A burst begins when the pictures that are left last this long: three at 25 a second, and push holds one
// more. When another film has the turn, it begins a picture later.
constexpr std::int64_t kRefillNs = 120'000'000;
constexpr std::int64_t kUrgentNs = 80'000'000;
constexpr int kFewestReduced = 2;
// A decoder that is too slow to fill the queue keeps its turn no longer than this.
constexpr int kMostTurnTicks = 5;

}  // namespace

VideoQueue::VideoQueue(MediaClock& clock, File limits, RefillTurns* turns)
    : VideoQueue(&clock, limits, WhenFull::Wait, turns) {}

VideoQueue::VideoQueue(Live limits)
    : VideoQueue(nullptr, {1, limits.spanNs, limits.mostFrames}, WhenFull::DropOldest, nullptr) {}

VideoQueue::VideoQueue(MediaClock* clock, File limits, WhenFull whenFull, RefillTurns* turns)
    : clock_(clock),
      number_(clock ? clock->addQueue() : 0),
      limits_(limits),
      whenFull_(whenFull),
      turns_(turns) {
  const auto most = static_cast<std::size_t>(std::max(limits.frames, limits.mostFrames));
  queue_.reserve(most);
  replaced_.reserve(most + 1);
}

VideoQueue::~VideoQueue() {
  MutexLock lock(mutex_);
  giveTurnBack();
}

bool VideoQueue::isFull() const {
  const int count = static_cast<int>(queue_.size());
  const bool reduced = count > 0 && queue_.back().reduced;
  if (count < (reduced ? kFewestReduced : limits_.frames))
    return false;
  const std::int64_t spanNs = queue_.back().timeNs - queue_.front().timeNs;
  return count >= limits_.mostFrames || ((reduced || !inBursts()) && spanNs >= limits_.spanNs);
}

bool VideoQueue::inBursts() const {
  return steady_ && !queue_.empty() && queue_.back().endIsFar;
}

bool VideoQueue::hasRoom() const {
  return !isFull() && !(resting_ && inBursts());
}

void VideoQueue::paceRefill(const ClockReading& reading) {
  steady_ = reading.epoch == epoch_ && reading.running && !firstIsDue_;
  if (hasTurn_ && (!inBursts() || ++turnTicks_ > kMostTurnTicks))
    giveTurnBack();
  resting_ = resting_ && inBursts();
  if (!resting_)
    return;
  const std::int64_t leftNs = queue_.empty() ? 0 : queue_.back().timeNs - shown_.timeNs;
  if (leftNs > kRefillNs)
    return;
  if (turns_) {
    if (!turns_->take(leftNs > kUrgentNs ? RefillTurns::Need::CanWait : RefillTurns::Need::Urgent))
      return;
    hasTurn_ = true;
    turnTicks_ = 0;
  }
  resting_ = false;
}

void VideoQueue::giveTurnBack() {
  if (std::exchange(hasTurn_, false))
    turns_->giveBack();
}

bool VideoQueue::push(TimedFrame frame) {
  TimedFrame dropped;  // freed outside of the lock
  MutexLock lock(mutex_);
  if (whenFull_ == WhenFull::Wait) {
    if (isFull() && firstIsDue_)
      clock_->beginNow(epoch_);
    if (isFull() && inBursts()) {
      resting_ = true;
      giveTurnBack();
    }
    room_.wait(lock, [this]() REQUIRES(mutex_) { return closed_ || flushing_ || hasRoom(); });
  }
  if (closed_ || flushing_)
    return false;
  if (isFull()) {
    dropped = std::move(queue_.front());
    queue_.erase(queue_.begin());
    overflowed_ = true;
    ++figures_.dropped;
  }
  ended_ = false;
  drained_ = false;
  if (clock_ && !std::exchange(begun_, true))
    clock_->begin(number_, epoch_, frame.timeNs);
  queue_.push_back(std::move(frame));
  lock.unlock();
  return true;
}

void VideoQueue::beginFlush(std::uint64_t epoch) {
  std::vector<TimedFrame> dropped;
  dropped.reserve(static_cast<std::size_t>(limits_.mostFrames));
  {
    MutexLock lock(mutex_);
    flushing_ = true;
    ended_ = false;
    drained_ = false;
    begun_ = false;
    firstIsDue_ = true;
    overflowed_ = false;
    steady_ = false;
    resting_ = false;
    giveTurnBack();
    epoch_ = epoch;
    dropped.swap(queue_);
  }
  room_.notify_all();
}

void VideoQueue::endFlush() {
  MutexLock lock(mutex_);
  flushing_ = false;
}

void VideoQueue::markEnd(std::int64_t endNs) {
  MutexLock lock(mutex_);
  ended_ = true;
  endNs_ = endNs;
  giveTurnBack();
  if (clock_ && !begun_)
    clock_->beginWithout(number_, epoch_);
}

void VideoQueue::close() {
  std::vector<TimedFrame> dropped;
  {
    MutexLock lock(mutex_);
    closed_ = true;
    giveTurnBack();
    dropped.swap(queue_);
  }
  room_.notify_all();
}

bool VideoQueue::isDrained() const {
  MutexLock lock(mutex_);
  return drained_;
}

int VideoQueue::size() const {
  MutexLock lock(mutex_);
  return static_cast<int>(queue_.size());
}

VideoQueue::Figures VideoQueue::figures() const {
  MutexLock lock(mutex_);
  return figures_;
}

bool VideoQueue::isDue(const ClockReading& reading, Due due) const {
  const std::int64_t liveNs = reading.frameNs * (due == Due::First ? 3 : 1) / 4;
  const std::int64_t earlyNs = clock_ ? reading.frameNs * 19 / 40 : liveNs;
  return !queue_.empty() && queue_.front().timeNs <= reading.timeNs + earlyNs;
}

void VideoQueue::take(Pull& result) {
  if (result.fresh)
    ++figures_.dropped;
  replaced_.push_back(std::exchange(shown_, std::move(queue_.front())));
  queue_.erase(queue_.begin());
  result.fresh = true;
  ++result.taken;
}

bool VideoQueue::reachedEnd(const ClockReading& reading) const {
  return ended_ && !drained_ && reading.running && queue_.empty() &&
         (firstIsDue_ || reading.timeNs >= endNs_);
}

std::int64_t VideoQueue::durationNs() const {
  if (firstIsDue_ || (queue_.empty() && !ended_))
    return 0;
  return std::max<std::int64_t>(0, (queue_.empty() ? endNs_ : queue_.front().timeNs) - shown_.timeNs);
}

VideoQueue::Pull VideoQueue::pull(const ClockReading& reading) {
  Pull result;
  std::int64_t shownNs = 0;
  bool wakesDecoder = false;
  {
    MutexLock lock(mutex_);
    const bool current = reading.epoch == epoch_;
    if (current && firstIsDue_) {
      if (reading.started && !queue_.empty()) {
        take(result);
        firstIsDue_ = false;
      } else {
        result.missed = reading.running && !ended_;
      }
    } else if (current && reading.running) {
      // The oldest picture was dropped because the queue was full, so the next one is shown without waiting.
      if (std::exchange(overflowed_, false) && !queue_.empty())
        take(result);
      while (isDue(reading, result.fresh ? Due::Another : Due::First))
        take(result);
      result.missed = !result.fresh && queue_.empty() && !ended_;
    }
    if (current && reachedEnd(reading)) {
      drained_ = true;
      result.drained = true;
    }
    figures_.missed += result.missed ? 1 : 0;
    if (result.fresh)
      figures_.latencyNs = reading.latencyNs + (clock_ ? 0 : reading.timeNs - shown_.timeNs);
    shownNs = shown_.timeNs;
    result.frame = shown_.frame;
    result.timeNs = shown_.timeNs;
    result.mediaNs = shown_.mediaNs;
    result.film = shown_.film;
    result.durationNs = durationNs();
    paceRefill(reading);
    wakesDecoder = hasRoom();
  }
  replaced_.clear();
  if (wakesDecoder)
    room_.notify_one();
  if (result.fresh && clock_)
    clock_->tellLate(reading, shownNs);
  return result;
}

}  // namespace korvia

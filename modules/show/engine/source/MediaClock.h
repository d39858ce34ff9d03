// The clock of a source that waits until its data are needed: a film. It counts render frames, so that a film
// at the show's rate gives each picture exactly once.
//
// Guarantees to the queues on it:
// - All queues get the same reading at a tick. Time advances by the ticks of the reading while it runs, and
//   stands still on pause and hold.
// - After a flush no time passes until every queue has reported its first data or its end. The earliest of
//   those data then set the time, also on pause. The first data of the first queue, the pictures, fall on a
//   tick, so that a film at the show's rate keeps its rhythm when its sound begins earlier.
// - Data that are more than a second late are not skipped: at the next tick the clock goes back to them, for
//   all queues.
//
// Engine thread: advance and tellLate. GStreamer's streaming threads, through their queues: begin,
// beginWithout, beginNow. The film's control thread: setPlaying. Any thread: the rest. No call waits.
#pragma once
#include <cstdint>
#include <optional>

#include "ClockReading.h"
#include "FrameRate.h"
#include "ThreadSafety.h"

namespace korvia {

class MediaClock {
 public:
  /// `rate` is that of the render, one tick a frame.
  explicit MediaClock(FrameRate rate) : rate_(rate) {}
  MediaClock(const MediaClock&) = delete;
  MediaClock& operator=(const MediaClock&) = delete;

  void setPlaying(bool playing);
  /// Freezes the time, whether playing or not.
  void setHold(bool hold);
  /// Data from before the flush do not count any more. Returns the new epoch, for VideoQueue::beginFlush.
  std::uint64_t flush();

  /// Returns the number of a new queue on this clock. All queues are added before the first data.
  int addQueue();
  /// The first data of the queue since the flush have this time stamp. Ignored for an old epoch.
  void begin(int queue, std::uint64_t epoch, std::int64_t timeNs);
  /// The queue has ended without data, so the clock does not wait for it.
  void beginWithout(int queue, std::uint64_t epoch);
  /// A queue is full, so the clock does not wait for the others: they may get no data before this queue has
  /// room.
  void beginNow(std::uint64_t epoch);

  /// `ticks` render frames have passed since the last call.
  ClockReading advance(int ticks);
  /// The newest data that a queue had at this reading have this time stamp. When they are late, the clock
  /// goes back.
  void tellLate(const ClockReading& reading, std::int64_t timeNs);

 private:
  std::int64_t timeNs() const REQUIRES(mutex_);
  void setTime(std::int64_t timeNs) REQUIRES(mutex_);
  std::int64_t startNs() const REQUIRES(mutex_);

  const FrameRate rate_;
  Mutex mutex_;
  bool playing_ GUARDED_BY(mutex_) = false;
  bool hold_ GUARDED_BY(mutex_) = false;
  std::uint64_t epoch_ GUARDED_BY(mutex_) = 0;
  int queues_ GUARDED_BY(mutex_) = 0;
  std::uint32_t begun_ GUARDED_BY(mutex_) = 0;  // a bit for each queue
  std::optional<std::int64_t> firstNs_ GUARDED_BY(mutex_);
  std::optional<std::int64_t> firstPictureNs_ GUARDED_BY(mutex_);  // of the first queue
  bool started_ GUARDED_BY(mutex_) = false;
  std::int64_t anchorNs_ GUARDED_BY(mutex_) = 0;
  std::int64_t framesSinceAnchor_ GUARDED_BY(mutex_) = 0;
  std::optional<std::int64_t> lateNs_ GUARDED_BY(mutex_);
};

}  // namespace korvia

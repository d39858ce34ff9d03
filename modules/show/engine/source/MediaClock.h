// The time of one source's media, for sources that wait until their data are needed: films. It counts render
// frames, so that a film at the show's rate gives every picture exactly once.
//
// What it promises to the queues on it:
// - One reading a tick, the same for all of them. Time only goes on by the reading's ticks while it runs, and
//   stands still on pause and hold.
// - After a flush no time passes until every queue has told of its first data or of its end. Then the
//   earliest of those data set the time, playing or not.
// - Data that come more than a second late are not skipped: the clock goes back to them at the next tick, for
//   all queues.
//
// Engine thread: advance and tellLate. GStreamer's streaming threads, through their queues: begin,
// beginWithout, beginNow. The film's control thread: setPlaying. Any thread: the rest. Nothing waits.
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
  /// The data before do not count any more. Returns the new epoch, for VideoQueue::beginFlush.
  std::uint64_t flush();

  /// A number for a queue that has this clock; all are added before the first data.
  int addQueue();
  /// The queue's first data since the flush have this time stamp. An old epoch is ignored.
  void begin(int queue, std::uint64_t epoch, std::int64_t timeNs);
  /// The queue has come to its end without data: nobody waits for it.
  void beginWithout(int queue, std::uint64_t epoch);
  /// A queue is full: the clock does not wait for the others, which may get nothing before this one has room.
  void beginNow(std::uint64_t epoch);

  /// `ticks` render frames have passed since the call before.
  ClockReading advance(int ticks);
  /// The newest data that a queue had at this reading have this time stamp.
  void tellLate(const ClockReading& reading, std::int64_t timeNs);

 private:
  std::int64_t timeNs() const REQUIRES(mutex_);
  void setTime(std::int64_t timeNs) REQUIRES(mutex_);

  const FrameRate rate_;
  Mutex mutex_;
  bool playing_ GUARDED_BY(mutex_) = false;
  bool hold_ GUARDED_BY(mutex_) = false;
  std::uint64_t epoch_ GUARDED_BY(mutex_) = 0;
  int queues_ GUARDED_BY(mutex_) = 0;
  std::uint32_t begun_ GUARDED_BY(mutex_) = 0;  // a bit for each queue
  std::optional<std::int64_t> firstNs_ GUARDED_BY(mutex_);
  bool started_ GUARDED_BY(mutex_) = false;
  std::int64_t anchorNs_ GUARDED_BY(mutex_) = 0;
  std::int64_t framesSinceAnchor_ GUARDED_BY(mutex_) = 0;
  std::optional<std::int64_t> lateNs_ GUARDED_BY(mutex_);
};

}  // namespace korvia

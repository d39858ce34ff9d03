// The seam between a source and the engine: a few time-stamped pictures, of which the one that is due leaves
// at each tick. Which is due says the source's clock, MediaClock or LiveClock; a queue of sound goes by the
// same reading. Streaming thread: push, endFlush, markEnd. Streaming or control thread: beginFlush. Engine
// thread: pull. Any thread: the rest. Only push waits, and only in a queue for files.
#pragma once
#include <cstdint>
#include <vector>

#include "MediaClock.h"
#include "ThreadSafety.h"
#include "engine/frame/Frame.h"

namespace korvia {

struct TimedFrame {
  FrameRef frame;
  std::int64_t timeNs = 0;   ///< on the clock's time line, which goes on through loops
  std::int64_t mediaNs = 0;  ///< place in the film, from its first picture
  int film = 0;              ///< which film it is of, where several share the queue
};

class VideoQueue {
 public:
  /// For a source that can wait: push waits while the queue is full.
  struct File {
    int frames = 4;
    /// Pictures of a fast film are kept up to this time, to bridge the seam of a loop.
    std::int64_t spanNs = 160'000'000;
    int mostFrames = 8;
  };
  /// For a source that cannot wait: when the queue is full, the oldest picture makes room. The span has to be
  /// longer than the latency of the clock, or pictures leave before they are due.
  struct Live {
    std::int64_t spanNs = 500'000'000;
    int mostFrames = 24;
  };

  struct Pull {
    FrameRef frame;  ///< null before the first picture
    std::int64_t mediaNs = 0;
    int film = 0;
    /// How long the picture on show lasts, as far as the next one or the end is known; else 0.
    std::int64_t durationNs = 0;
    bool fresh = false;    ///< another picture than at the call before
    bool missed = false;   ///< playing, and the picture that is due is not there yet
    bool drained = false;  ///< the end was reached at this call
  };

  struct Figures {
    std::int64_t dropped = 0;    ///< pictures that were never shown
    std::int64_t missed = 0;     ///< ticks at which the picture that was due was not there
    std::int64_t latencyNs = 0;  ///< of the newest picture on show, from its undelayed arrival; 0 for files
  };

  explicit VideoQueue(MediaClock& clock) : VideoQueue(clock, File()) {}
  /// The clock outlives the queue.
  VideoQueue(MediaClock& clock, File limits);
  explicit VideoQueue(Live limits);

  /// Waits while full (File) or drops the oldest (Live); false when the picture was refused by a flush or the
  /// close.
  bool push(TimedFrame frame);
  /// Drops what is queued and refuses pictures until endFlush(); the picture on show stays. The first picture
  /// after it is shown when the clock has started, playing or not. `epoch` comes from MediaClock::flush,
  /// which is called just before.
  void beginFlush(std::uint64_t epoch);
  void endFlush();
  /// No picture follows; the last one lasts until `endNs`. Undone by a flush and by the next push.
  void markEnd(std::int64_t endNs);
  /// For good; releases a waiting push.
  void close();
  /// The end was reached and nothing came since.
  bool isDrained() const;
  Figures figures() const;

  /// The picture for this tick, by the clock's reading of it.
  Pull pull(const ClockReading& reading);

 private:
  enum class WhenFull { Wait, DropOldest };

  VideoQueue(MediaClock* clock, File limits, WhenFull whenFull);
  bool isFull() const REQUIRES(mutex_);
  bool isDue(const ClockReading& reading) const REQUIRES(mutex_);
  void take(Pull& result) REQUIRES(mutex_);
  /// Stamps of a live source jitter and drift through the moments of the ticks: after a repeated picture, a
  /// skipped one takes half a frame of drift, and the other way round.
  void settleBias(const Pull& result, bool skipped) REQUIRES(mutex_);
  bool reachedEnd(const ClockReading& reading) const REQUIRES(mutex_);
  /// Of the picture on show; 0 while nobody knows what follows it.
  std::int64_t durationNs() const REQUIRES(mutex_);

  MediaClock* const clock_;  // null for Live
  const int number_;         // on the clock
  const File limits_;
  const WhenFull whenFull_;
  mutable Mutex mutex_;
  ConditionVariable room_;
  std::vector<TimedFrame> queue_ GUARDED_BY(mutex_);  // a few, the oldest first
  TimedFrame shown_ GUARDED_BY(mutex_);
  std::uint64_t epoch_ GUARDED_BY(mutex_) = 0;
  bool flushing_ GUARDED_BY(mutex_) = false;
  bool closed_ GUARDED_BY(mutex_) = false;
  bool begun_ GUARDED_BY(mutex_) = false;      // pictures came since the flush
  bool firstIsDue_ GUARDED_BY(mutex_) = true;  // none was shown since the flush
  bool overflowed_ GUARDED_BY(mutex_) = false;
  int bias_ GUARDED_BY(mutex_) = 1;  // pictures are due a quarter of a frame early (1) or late (-1)
  bool ended_ GUARDED_BY(mutex_) = false;
  bool drained_ GUARDED_BY(mutex_) = false;
  std::int64_t endNs_ GUARDED_BY(mutex_) = 0;
  Figures figures_ GUARDED_BY(mutex_);

  std::vector<TimedFrame> replaced_;  // engine thread; given back outside of the lock
};

}  // namespace korvia

// The queue between a source and the engine: it holds a few pictures with time stamps and releases the one
// that is due at each tick. The source's clock, MediaClock or LiveClock, says which one is due; a queue of
// sound uses the same reading. A decoder works with warm caches when it gives several pictures in one go, so
// a film in steady play is refilled in bursts. Streaming thread: push, endFlush, markEnd. Streaming or
// control thread: beginFlush. Engine thread: pull. Any thread: the rest. Only push waits, and only in a queue
// for files.
#pragma once
#include <cstdint>
#include <vector>

#include "MediaClock.h"
#include "RefillTurns.h"
#include "ThreadSafety.h"
#include "engine/frame/Frame.h"

namespace korvia {

struct TimedFrame {
  FrameRef frame;
  std::int64_t timeNs = 0;   ///< on the clock's time line, which continues through loops
  std::int64_t mediaNs = 0;  ///< time in the film, from its first picture
  int film = 0;              ///< number of its film, when several share the queue
  /// Near the end of its film, or when that is unknown, the queue is kept full, so that there is time to
  /// begin the film that follows.
  bool endIsFar = false;
  /// Decoded at the reduced rate. Few such pictures are queued, so that they are gone soon after the return
  /// to the full rate.
  bool reduced = false;
};

class VideoQueue {
 public:
  /// For a source that can wait: push waits while the queue is full. In bursts it takes `mostFrames`, and
  /// push then waits until few are left.
  struct File {
    int frames = 4;
    /// A film with a high frame rate may queue more pictures, up to this time, so that they bridge the seam
    /// of a loop.
    std::int64_t spanNs = 160'000'000;
    int mostFrames = 8;
  };
  /// For a source that cannot wait: when the queue is full, the oldest picture is dropped. The span has to be
  /// longer than the latency of the clock, or pictures leave before they are due.
  struct Live {
    std::int64_t spanNs = 500'000'000;
    int mostFrames = 24;
  };

  struct Pull {
    FrameRef frame;  ///< null before the first picture
    std::int64_t timeNs = 0;
    std::int64_t mediaNs = 0;
    int film = 0;
    /// The duration of the picture on show; 0 while neither the next picture nor the end is known.
    std::int64_t durationNs = 0;
    bool fresh = false;    ///< another picture than at the last call
    int taken = 0;         ///< pictures that left the queue, shown or skipped
    bool missed = false;   ///< playing, and the picture that is due has not come
    bool drained = false;  ///< the end was reached at this call
  };

  struct Figures {
    std::int64_t dropped = 0;  ///< pictures that were never shown
    std::int64_t missed = 0;   ///< ticks at which the picture that was due had not come
    /// From the undelayed arrival of the picture on show to its first tick; 0 for files.
    std::int64_t latencyNs = 0;
  };

  explicit VideoQueue(MediaClock& clock) : VideoQueue(clock, File()) {}
  /// The clock and the turns outlive the queue. Without turns the queue does not look at other films.
  VideoQueue(MediaClock& clock, File limits, RefillTurns* turns = nullptr);
  explicit VideoQueue(Live limits);
  ~VideoQueue();

  /// Waits while the queue is full (File) or drops the oldest picture (Live); false when a flush or close()
  /// refused the picture.
  bool push(TimedFrame frame);
  /// Drops the queued pictures and refuses new ones until endFlush(); the picture on show stays. The first
  /// picture after the flush is shown as soon as the clock has started, also on pause. `epoch` is what
  /// MediaClock::flush returned just before.
  void beginFlush(std::uint64_t epoch);
  void endFlush();
  /// No picture follows; the last one lasts until `endNs`. A flush or the next push undoes it.
  void markEnd(std::int64_t endNs);
  /// Closes for good and ends a push that waits.
  void close();
  /// True when the end was reached and nothing has come since.
  bool isDrained() const;
  /// Pictures that wait to be shown.
  int size() const;
  Figures figures() const;

  /// The picture for this tick, by the clock's reading of it.
  Pull pull(const ClockReading& reading);

 private:
  enum class WhenFull { Wait, DropOldest };

  VideoQueue(MediaClock* clock, File limits, WhenFull whenFull, RefillTurns* turns);
  bool isFull() const REQUIRES(mutex_);
  bool inBursts() const REQUIRES(mutex_);
  bool hasRoom() const REQUIRES(mutex_);
  /// Begins and ends bursts, by what is queued at this tick.
  void paceRefill(const ClockReading& reading) REQUIRES(mutex_);
  void giveTurnBack() REQUIRES(mutex_);
  /// The first or another picture of the tick.
  enum class Due { First, Another };
  /// A picture is shown at the tick that is nearest to its time, so that on the average it is as early as it
  /// is late and meets its sound. For a film the limit is a little less than half a frame: the stamps of a
  /// film of twice the show's rate lie at half a frame, rounded up or down. The stamps of a live source
  /// jitter and drift against the ticks, so that pictures could be repeated and skipped in turn. There the
  /// limit is three quarters of a frame, and a quarter for another picture in the same tick: after a repeat,
  /// half a frame of drift is needed before a picture is skipped, and the other way round.
  bool isDue(const ClockReading& reading, Due due) const REQUIRES(mutex_);
  void take(Pull& result) REQUIRES(mutex_);
  bool reachedEnd(const ClockReading& reading) const REQUIRES(mutex_);
  /// The duration of the picture on show; 0 while it is unknown.
  std::int64_t durationNs() const REQUIRES(mutex_);

  MediaClock* const clock_;  // null for Live
  const int number_;         // on the clock
  const File limits_;
  const WhenFull whenFull_;
  RefillTurns* const turns_;  // may be null
  mutable Mutex mutex_;
  ConditionVariable room_;
  std::vector<TimedFrame> queue_ GUARDED_BY(mutex_);  // a few, the oldest first
  TimedFrame shown_ GUARDED_BY(mutex_);
  std::uint64_t epoch_ GUARDED_BY(mutex_) = 0;
  bool flushing_ GUARDED_BY(mutex_) = false;
  bool closed_ GUARDED_BY(mutex_) = false;
  bool begun_ GUARDED_BY(mutex_) = false;      // a picture has come since the flush
  bool firstIsDue_ GUARDED_BY(mutex_) = true;  // no picture was shown since the flush
  bool overflowed_ GUARDED_BY(mutex_) = false;
  bool steady_ GUARDED_BY(mutex_) = false;   // the last tick showed a picture in play
  bool resting_ GUARDED_BY(mutex_) = false;  // between two bursts
  bool hasTurn_ GUARDED_BY(mutex_) = false;
  int turnTicks_ GUARDED_BY(mutex_) = 0;
  bool ended_ GUARDED_BY(mutex_) = false;
  bool drained_ GUARDED_BY(mutex_) = false;
  std::int64_t endNs_ GUARDED_BY(mutex_) = 0;
  Figures figures_ GUARDED_BY(mutex_);

  std::vector<TimedFrame> replaced_;  // engine thread; freed outside of the lock
};

}  // namespace korvia

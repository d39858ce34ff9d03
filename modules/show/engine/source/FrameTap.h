// The seam between a film and the engine: a few time-stamped pictures, and the clock that says which one is
// due. The clock counts render frames, so that a film at the show's rate gives every picture exactly once.
// Streaming thread: push, beginFlush, endFlush, markEnd. Engine thread: pull. Any thread: the rest.
// Only push waits.
#pragma once
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

#include "FrameRate.h"
#include "engine/frame/Frame.h"

namespace korvia {

struct TimedFrame {
  FrameRef frame;
  std::int64_t timeNs = 0;   ///< on the timeline that goes on through loops
  std::int64_t mediaNs = 0;  ///< place in the film
};

class FrameTap {
 public:
  struct Limits {
    int frames = 4;
    /// Pictures of a fast film are kept up to this time, to bridge the seam of a loop.
    std::int64_t spanNs = 160'000'000;
    int mostFrames = 8;
  };

  struct Pull {
    FrameRef frame;  ///< null before the first picture
    std::int64_t mediaNs = 0;
    bool fresh = false;    ///< another picture than at the call before
    bool missed = false;   ///< playing, and the picture that is due is not there yet
    bool drained = false;  ///< the end was reached at this call
  };

  explicit FrameTap(FrameRate rate) : FrameTap(rate, Limits()) {}
  FrameTap(FrameRate rate, Limits limits);

  /// Waits while full; false when the picture was refused by a flush or the close.
  bool push(TimedFrame frame);
  /// Drops what is queued and refuses pictures until endFlush(); the picture on show stays. The first picture
  /// after it is shown at once, playing or not, and sets the clock.
  void beginFlush();
  void endFlush();
  /// No picture follows; the last one lasts until `endNs`. Undone by a flush and by the next push.
  void markEnd(std::int64_t endNs);
  /// For good; releases a waiting push.
  void close();

  void setPlaying(bool playing);
  /// Freezes picture and clock, whether playing or not.
  void setHold(bool hold);
  /// The end was reached and nothing came since.
  bool isDrained() const;

  /// The picture for now. `ticks` render frames have passed since the call before.
  Pull pull(int ticks);

 private:
  bool isFull() const;
  std::int64_t clockNs() const;
  void setClock(std::int64_t timeNs);

  const FrameRate rate_;
  const Limits limits_;
  mutable std::mutex mutex_;
  std::condition_variable room_;  // with mutex_
  // All guarded by mutex_.
  std::vector<TimedFrame> queue_;  // a few, the oldest first
  TimedFrame shown_;
  bool flushing_ = false;
  bool closed_ = false;
  bool playing_ = false;
  bool hold_ = false;
  bool firstSetsClock_ = true;
  bool ended_ = false;
  bool drained_ = false;
  std::int64_t endNs_ = 0;
  std::int64_t anchorNs_ = 0;
  std::int64_t framesSinceAnchor_ = 0;

  std::vector<TimedFrame> skipped_;  // engine thread; given back outside of the lock
};

}  // namespace korvia

// The time of a source that cannot wait: cameras and network streams. Their stamps run on a clock of their
// own; this clock puts them on one time line with ours and says, with the same readings as a MediaClock, what
// is due: what has come undelayed leaves one target latency after its arrival. Jitter up to the target is
// absorbed, drift between the two clocks is measured and followed, so that the latency stays over hours.
//
// Live time lies in the clock and not in a queue, so that sound shares it: all streams of a source give their
// stamps to arrive(), push what it returns, and pull with one reading a tick. The quickest stream makes the
// envelope, so the target has to cover the slowest. A reading goes on smoothly, at most 0.5 % beside the
// source's speed: pictures are repeated or skipped by it, sound is resampled to it.
//
// Source's threads: arrive. Engine thread: advance. Any thread: the rest. Nothing waits.
#pragma once
#include <cstdint>
#include <optional>

#include "ClockReading.h"
#include "DriftEstimator.h"
#include "FrameRate.h"
#include "ThreadSafety.h"

namespace korvia {

class LiveClock {
 public:
  struct Figures {
    double driftPpm = 0;  ///< the source's clock is faster by this
    std::int64_t latencyNs = 0;
    std::int64_t reanchors = 0;  ///< jumps of the stamps that were closed
  };

  /// `rate` is that of the render, one tick a frame.
  LiveClock(FrameRate rate, std::int64_t targetLatencyNs) : rate_(rate), targetNs_(targetLatencyNs) {}
  LiveClock(const LiveClock&) = delete;
  LiveClock& operator=(const LiveClock&) = delete;

  /// Data with this stamp of the source's clock have come at `arrivalNs` of ours. Returns their time stamp
  /// for a queue. Where the stamps jump, they are moved so that the time line goes on.
  std::int64_t arrive(std::int64_t stampNs, std::int64_t arrivalNs);
  /// Queues keep what they show; time goes on.
  void setHold(bool hold);

  /// `ticks` render frames have passed since the call before, and it is `nowNs` of the clock of arrivals.
  ClockReading advance(int ticks, std::int64_t nowNs);
  Figures figures() const;

 private:
  bool isJump(std::int64_t stampNs, std::int64_t beyondNs) const REQUIRES(mutex_);
  bool isLateForLong(std::int64_t arrivalNs, std::int64_t beyondNs) REQUIRES(mutex_);
  void reanchor(std::int64_t beyondNs) REQUIRES(mutex_);

  const FrameRate rate_;
  const std::int64_t targetNs_;
  mutable Mutex mutex_;
  DriftEstimator estimator_ GUARDED_BY(mutex_);
  // Difference from the source's time stamps to the time line; none before the first data.
  std::optional<std::int64_t> shiftNs_ GUARDED_BY(mutex_);
  std::int64_t lastStampNs_ GUARDED_BY(mutex_) = 0;
  // The run of data that came too late to be shown in time.
  std::optional<std::int64_t> lateSinceNs_ GUARDED_BY(mutex_);
  std::int64_t lateFirstNs_ GUARDED_BY(mutex_) = 0;  // what it began with, in transit beyond the expected
  std::int64_t lateLeastNs_ GUARDED_BY(mutex_) = 0;
  bool hold_ GUARDED_BY(mutex_) = false;
  bool started_ GUARDED_BY(mutex_) = false;
  std::int64_t timeNs_ GUARDED_BY(mutex_) = 0;
  std::int64_t latencyNs_ GUARDED_BY(mutex_) = 0;
  std::int64_t reanchors_ GUARDED_BY(mutex_) = 0;
};

}  // namespace korvia

// The clock of a source that cannot wait: a camera or a network stream. The time stamps of its data come from
// a clock of its own. LiveClock maps them to one time line and gives the same readings as a MediaClock: data
// that arrive undelayed are due one target latency after their arrival. Jitter up to the target latency is
// absorbed. Drift between the two clocks is measured and followed, so that the latency is the same after
// hours.
//
// The mapping belongs to the clock and not to a queue, because sound shares it: all streams of a source pass
// their stamps to arrive(), push with the stamp that it returns, and pull with one reading a tick. The
// expected transit is that of the fastest stream, so the target latency has to cover the slowest one; when
// data keep coming later than that, it is raised. Time runs at most 0.5 % faster or slower than the source:
// pictures are repeated or skipped, sound is resampled.
//
// Source's threads: arrive. Engine thread: advance. Any thread: the rest. No call waits.
#pragma once
#include <array>
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
    double driftPpm = 0;  ///< how much faster the source's clock runs than ours
    std::int64_t latencyNs = 0;
    std::int64_t reanchors = 0;  ///< jumps of the stamps that were removed
    std::int64_t extraNs = 0;    ///< added to the target latency, because the jitter is larger
  };

  /// `rate` is that of the render, one tick a frame.
  LiveClock(FrameRate rate, std::int64_t targetLatencyNs) : rate_(rate), targetNs_(targetLatencyNs) {}
  LiveClock(const LiveClock&) = delete;
  LiveClock& operator=(const LiveClock&) = delete;

  /// Streams of one source with the same clock. Each has its own order of stamps.
  enum class Stream { Picture, Sound };

  /// Data with this stamp of the source's clock have arrived at `arrivalNs` of our clock. Returns their time
  /// stamp for a queue. When the stamps jump, they are shifted so that the time line continues.
  std::int64_t arrive(std::int64_t stampNs, std::int64_t arrivalNs, Stream stream = Stream::Picture);
  /// The stamps that follow have nothing to do with those before: the first of them is taken as undelayed.
  void beginStamps();
  /// On hold the queues keep the picture on show, while time goes on.
  void setHold(bool hold);

  /// `ticks` render frames have passed since the last call; `nowNs` is the present time of the clock that
  /// gives `arrivalNs`.
  ClockReading advance(int ticks, std::int64_t nowNs);
  /// When data with this stamp of the source's clock are due, by our clock; none before the first data.
  std::optional<std::int64_t> shownNs(std::int64_t stampNs) const;
  Figures figures() const;

 private:
  bool isJump(std::int64_t stampNs, std::int64_t beyondNs, std::int64_t lastStampNs) const REQUIRES(mutex_);
  bool isLateForLong(std::int64_t arrivalNs, std::int64_t beyondNs) REQUIRES(mutex_);
  /// Raises the target latency when part of the data come too late again and again.
  void adaptToJitter(std::int64_t beyondNs, std::int64_t arrivalNs) REQUIRES(mutex_);
  std::int64_t targetNs() const REQUIRES(mutex_) { return targetNs_ + extraNs_; }
  void reanchor(std::int64_t beyondNs) REQUIRES(mutex_);

  const FrameRate rate_;
  const std::int64_t targetNs_;
  mutable Mutex mutex_;
  DriftEstimator estimator_ GUARDED_BY(mutex_);
  // Difference from the source's time stamps to the time line; none before the first data.
  std::optional<std::int64_t> shiftNs_ GUARDED_BY(mutex_);
  // By Stream; none before the first data, and after the stamps began anew.
  std::array<std::optional<std::int64_t>, 2> lastStampNs_ GUARDED_BY(mutex_);
  bool anew_ GUARDED_BY(mutex_) = false;
  // Since when all data have come too late to be shown in time; none when they come in time. The delays are
  // those beyond the expected transit, of the first such data and the least.
  std::optional<std::int64_t> lateSinceNs_ GUARDED_BY(mutex_);
  std::int64_t lateFirstNs_ GUARDED_BY(mutex_) = 0;
  std::int64_t lateLeastNs_ GUARDED_BY(mutex_) = 0;
  // Whether data were too late in the present window, in how many windows before, and the most of it.
  std::int64_t windowStartNs_ GUARDED_BY(mutex_) = 0;
  bool lateInWindow_ GUARDED_BY(mutex_) = false;
  int lateWindows_ GUARDED_BY(mutex_) = 0;
  std::int64_t mostLateNs_ GUARDED_BY(mutex_) = 0;
  std::int64_t extraNs_ GUARDED_BY(mutex_) = 0;
  bool hold_ GUARDED_BY(mutex_) = false;
  bool started_ GUARDED_BY(mutex_) = false;
  std::int64_t timeNs_ GUARDED_BY(mutex_) = 0;
  std::int64_t tickNs_ GUARDED_BY(mutex_) = 0;  // of our clock, when timeNs_ was shown
  std::int64_t latencyNs_ GUARDED_BY(mutex_) = 0;
  std::int64_t reanchors_ GUARDED_BY(mutex_) = 0;
};

}  // namespace korvia

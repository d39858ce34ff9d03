// The queue of sound of a source that cannot wait: a camera or a network stream. Its packets have time stamps
// from LiveClock::arrive, and the sound is resampled to follow the clock's readings, so that it stays with
// its pictures and no sample is dropped or repeated, however much the source's clock drifts. Jumps of the
// stamps, missing packets and hold are silence with a fade at both ends.
//
// Source's thread: push. Engine thread: advance, pull. Any thread: figures. No call waits; advance and pull
// do not allocate.
#pragma once
#include <QString>
#include <chrono>
#include <cstdint>
#include <optional>

#include "ClockReading.h"
#include "ThreadSafety.h"
#include "engine/audio/VarispeedBuffer.h"

namespace korvia {

class LiveAudioQueue {
 public:
  struct Figures {
    double speed = 1;            ///< at which the sound is played
    double errorSamples = 0;     ///< how much too late the sound leaves
    std::int64_t underruns = 0;  ///< times that the sound that was due had not come
    std::int64_t jumps = 0;      ///< of the time stamps, or because nobody pulled for long
  };

  /// `name` is that of the source, for the log. The queue holds this much sound, which has to be more than
  /// the latency of the clock.
  explicit LiveAudioQueue(const QString& name, std::int64_t spanNs = 2'000'000'000);
  LiveAudioQueue(const LiveAudioQueue&) = delete;
  LiveAudioQueue& operator=(const LiveAudioQueue&) = delete;

  /// `samples` pairs of left and right; the first of them has the time stamp.
  void push(const float* interleaved, int samples, std::int64_t timeNs);
  void push(StereoSpan sound, std::int64_t timeNs);
  /// Begins the tick of this reading. Called at every tick, whether the sound is pulled or not.
  void advance(const ClockReading& reading);
  /// The sound of the tick, in one or several pieces. False, with nothing written, for silence.
  bool pull(StereoSpan out);
  Figures figures() const;

 private:
  /// Where the time stamps of the pushed samples lie: that of sample 0, if all were like those since `first`.
  struct Anchor {
    std::int64_t zeroNs = 0;
    std::int64_t first = 0;
    int number = 0;
  };

  void note(bool taken, std::int64_t first, std::int64_t timeNs);
  void anchor(std::int64_t first, std::int64_t timeNs);
  void follow(const ClockReading& reading);
  void setSpeed(const ClockReading& reading, double wanted);

  const QString name_;
  VarispeedBuffer buffer_;

  mutable Mutex mutex_;
  std::optional<Anchor> pushed_ GUARDED_BY(mutex_);  // of the newest samples
  Figures figures_ GUARDED_BY(mutex_);

  // Source's thread.
  bool refused_ = false;  // samples were lost because the buffer was full
  std::int64_t underrunsLogged_ = 0;
  std::chrono::steady_clock::time_point quietUntil_;

  // Engine thread.
  std::optional<Anchor> played_;
  std::int64_t lastNs_ = 0;  // time of the last reading
  double speed_ = 1;
  bool pulled_ = false;    // in this tick
  bool mayBegin_ = false;  // at start_, in this tick
  std::int64_t start_ = 0;
};

}  // namespace korvia

// The queue of sound between a film and the engine, beside its VideoQueue and on the same MediaClock: sound
// and pictures with the same time stamp leave in the same tick. It holds somewhat more than a second. What
// would click is faded over a few ms: play, pause, hold, seek, gaps in the time stamps, sound that does not
// come in time, and the seam between two films whose sound overlaps.
//
// Sound is pushed in parts: a flush or a seam begins another one, and sound of the parts before is refused.
// Streaming threads: push, markEnd, interrupt. Streaming or control thread: beginFlush, joinAt. Engine
// thread: advance, pull. Any thread: the rest. Only push waits.
#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "MediaClock.h"
#include "ThreadSafety.h"
#include "engine/audio/GainRamp.h"
#include "engine/audio/StereoSpan.h"

namespace korvia {

class AudioQueue {
 public:
  using Part = std::uint64_t;

  struct Tick {
    int taken = 0;  ///< samples that have left the queue since the last tick
    /// Time stamp of the sound that goes with the picture of the tick; none for silence.
    std::optional<std::int64_t> timeNs;
  };

  /// The clock outlives the queue.
  explicit AudioQueue(MediaClock& clock);

  /// The part that is pushed now.
  Part part() const;
  /// Waits while the queue is full. False when `part` is over or the queue is closed. Where the time stamps
  /// differ a little from the count of the samples, the samples are counted.
  bool push(Part part, StereoSpan sound, std::int64_t timeNs);
  /// No sound follows in this part.
  void markEnd(Part part);
  /// Begins a part, whose sound comes at `timeNs` or later. Sound that is queued for later is faded out
  /// there.
  Part joinAt(std::int64_t timeNs);
  /// Ends a push that waits, and begins a part.
  void interrupt();
  /// Drops the queued sound and begins a part. `epoch` is what MediaClock::flush returned just before.
  void beginFlush(std::uint64_t epoch);
  /// Closes for good and ends a push that waits.
  void close();
  std::int64_t queuedSamples() const;

  /// Begins the tick of this reading. Called at every tick, whether the sound is pulled or not.
  Tick advance(const ClockReading& reading);
  /// The sound of the tick, in one or several pieces. False, with nothing written, for silence.
  bool pull(StereoSpan out);

 private:
  void begin() REQUIRES(mutex_);
  /// Where samples with this time go, when they are pushed now.
  std::int64_t placeOf(std::int64_t index) const REQUIRES(mutex_);
  std::int64_t roomAt(std::int64_t place) const REQUIRES(mutex_);
  bool mayPush(std::int64_t place) const REQUIRES(mutex_);
  void waitForRoom(MutexLock& lock, Part part, std::int64_t index) REQUIRES(mutex_);
  /// Prepares the end of the queue for samples at `place`.
  void joinEnd(std::int64_t place) REQUIRES(mutex_);
  void put(std::int64_t place, StereoSpan sound) REQUIRES(mutex_);
  void cutAt(std::int64_t index) REQUIRES(mutex_);
  void fadeEnd() REQUIRES(mutex_);
  /// The next samples fade out, and reading begins anew after them.
  void fallSilent() REQUIRES(mutex_);
  int discard() REQUIRES(mutex_);
  bool hasSoundAt(std::int64_t index, int samples) const REQUIRES(mutex_);
  void read(std::int64_t index, StereoSpan out) const REQUIRES(mutex_);

  MediaClock& clock_;
  const int number_;  // on the clock

  mutable Mutex mutex_;
  ConditionVariable room_;
  // A ring. Indices count samples from the zero of the clock's time line.
  std::vector<float> left_ GUARDED_BY(mutex_);
  std::vector<float> right_ GUARDED_BY(mutex_);
  std::int64_t first_ GUARDED_BY(mutex_) = 0;  // oldest queued sample
  std::int64_t end_ GUARDED_BY(mutex_) = 0;    // behind the newest one
  // Where the sound goes on. Before end_ only while the sound of another part fades out there.
  std::int64_t continuation_ GUARDED_BY(mutex_) = 0;
  bool holdsAny_ GUARDED_BY(mutex_) = false;  // something was queued since the flush, so end_ means something
  bool endIsFaded_ GUARDED_BY(mutex_) = false;
  GainRamp pushGain_ GUARDED_BY(mutex_){GainRamp::Gain::Silent};

  Part part_ GUARDED_BY(mutex_) = 0;
  bool partHasBegun_ GUARDED_BY(mutex_) = false;
  std::int64_t partStart_ GUARDED_BY(mutex_);  // sound before it is dropped
  std::uint64_t epoch_ GUARDED_BY(mutex_) = 0;
  bool begun_ GUARDED_BY(mutex_) = false;           // the clock knows of the sound since the flush
  std::int64_t epochStart_ GUARDED_BY(mutex_) = 0;  // first sample since the flush
  bool resting_ GUARDED_BY(mutex_) = false;         // was full; push waits until half is left
  std::optional<std::int64_t> waitingAt_ GUARDED_BY(mutex_);
  bool closed_ GUARDED_BY(mutex_) = false;

  std::int64_t next_ GUARDED_BY(mutex_) = 0;     // sample that is pulled next
  bool nextIsKnown_ GUARDED_BY(mutex_) = false;  // the clock has started since the flush
  bool sounding_ GUARDED_BY(mutex_) = false;     // this tick plays
  bool pulled_ GUARDED_BY(mutex_) = false;       // in this tick
  bool heard_ GUARDED_BY(mutex_) = false;        // pulled in the tick before
  GainRamp pullGain_ GUARDED_BY(mutex_){GainRamp::Gain::Silent};
  // What fades out after the sound was left.
  std::array<float, GainRamp::kSamples> tailLeft_ GUARDED_BY(mutex_);
  std::array<float, GainRamp::kSamples> tailRight_ GUARDED_BY(mutex_);
  int tailRead_ GUARDED_BY(mutex_) = GainRamp::kSamples;
};

}  // namespace korvia

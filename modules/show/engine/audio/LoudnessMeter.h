// Loudness and true peak of program by EBU R 128, with libebur128. It measures on a thread of its own,
// because libebur128 allocates and its true peak takes longer than mixing. The engine thread hands over
// blocks without waiting; when the meter falls a second behind, it leaves blocks out.
#pragma once
#include <atomic>
#include <memory>
#include <thread>

#include "SoundRing.h"
#include "ThreadSafety.h"
#include "tagKorviaShowEngineFigures.h"

namespace korvia {

class LoudnessMeter {
 public:
  using Loudness = tagKorviaShowEngineFigures::Loudness;

  LoudnessMeter();
  ~LoudnessMeter();
  LoudnessMeter(const LoudnessMeter&) = delete;
  LoudnessMeter& operator=(const LoudnessMeter&) = delete;

  // Engine thread.
  /// Forgets everything: what is pushed from here on belongs to a new show.
  void restart();
  void push(StereoSpan block) { ring_.push(block); }

  /// As of at most a tenth of a second ago. Any thread.
  Loudness loudness() const;
  /// Whether all that was pushed is in loudness(). Any thread.
  bool isUpToDate() const;

 private:
  class Analysis;

  void run();
  void measure(Analysis& analysis);

  SoundRing ring_;
  // The sound up to this place of the ring belongs to the show before.
  std::atomic<std::size_t> showBegin_{0};

  mutable Mutex mutex_;
  ConditionVariable wake_;
  bool stop_ GUARDED_BY(mutex_) = false;
  Loudness loudness_ GUARDED_BY(mutex_);
  std::size_t measured_ GUARDED_BY(mutex_) = 0;      // place in the ring
  std::size_t measuredShow_ GUARDED_BY(mutex_) = 0;  // the showBegin_ that loudness_ is of
  std::thread thread_;
};

}  // namespace korvia

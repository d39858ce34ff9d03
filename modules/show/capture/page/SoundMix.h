// Adds up the sounds of a page, each of which comes as a stream of its own, and closes the small gaps between
// their stamps. Any thread.
#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "ThreadSafety.h"

namespace korvia {

class SoundMix {
 public:
  /// Pairs of samples, left and right, at 48 kHz, and the time of the first one.
  using Taker = std::function<void(const float* samples, int frames, std::int64_t stampNs)>;

  /// How long a sound waits for the others, in nanoseconds.
  static constexpr std::int64_t kWaitNs = 40'000'000;

  /// `taker` is called by add() and flush(), not twice at the same time.
  explicit SoundMix(Taker taker) : taker_(std::move(taker)) {}

  /// `stream` names the sound. What comes too late is left out.
  void add(const void* stream, const float* samples, int frames, std::int64_t stampNs) EXCLUDES(mutex_);
  /// Hands on what has waited long enough.
  void flush(std::int64_t nowNs) EXCLUDES(mutex_);

 private:
  void hand(std::int64_t nowNs) REQUIRES(mutex_);

  const Taker taker_;
  Mutex mutex_;
  std::vector<float> waiting_ GUARDED_BY(mutex_);
  /// The frame of the first one that waits, counted from the time 0.
  std::int64_t firstFrame_ GUARDED_BY(mutex_) = 0;
  /// The frame that comes next, by stream.
  std::map<const void*, std::int64_t> nextFrames_ GUARDED_BY(mutex_);
};

}  // namespace korvia

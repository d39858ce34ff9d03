// A bounded queue of sound between two threads, without a lock, so that the thread that fills it never waits
// for the one that empties it. One thread pushes, one pops.
#pragma once
#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <vector>

#include "engine/audio/StereoSpan.h"

namespace korvia {

class SoundRing {
 public:
  /// Has room for at least `samples`.
  explicit SoundRing(int samples)
      : pairs_(2 * std::bit_ceil(static_cast<std::size_t>(samples))), mask_(pairs_.size() / 2 - 1) {}

  /// All of the sound; false, with nothing taken, when there is no room for it. Pushing thread.
  bool push(StereoSpan sound) {
    const std::size_t written = written_.load(std::memory_order_relaxed);
    const auto count = static_cast<std::size_t>(sound.samples);
    if (written + count - read_.load(std::memory_order_acquire) > mask_ + 1)
      return false;
    for (std::size_t i = 0; i < count; ++i) {
      float* const pair = &pairs_[2 * ((written + i) & mask_)];
      pair[0] = sound.left[i];
      pair[1] = sound.right[i];
    }
    written_.store(written + count, std::memory_order_release);
    return true;
  }

  /// Copies up to `most` pairs of left and right; returns how many. Popping thread.
  int pop(float* pairs, int most) {
    const std::size_t read = read_.load(std::memory_order_relaxed);
    const std::size_t count =
        std::min(static_cast<std::size_t>(most), written_.load(std::memory_order_acquire) - read);
    for (std::size_t i = 0; i < count; ++i) {
      const float* const pair = &pairs_[2 * ((read + i) & mask_)];
      pairs[2 * i] = pair[0];
      pairs[2 * i + 1] = pair[1];
    }
    read_.store(read + count, std::memory_order_release);
    return static_cast<int>(count);
  }

  /// Samples pushed so far. Any thread.
  std::size_t pushed() const { return written_.load(std::memory_order_acquire); }
  /// Samples popped so far. Any thread.
  std::size_t popped() const { return read_.load(std::memory_order_acquire); }

 private:
  std::vector<float> pairs_;
  const std::size_t mask_;
  std::atomic<std::size_t> written_{0};
  std::atomic<std::size_t> read_{0};
};

}  // namespace korvia

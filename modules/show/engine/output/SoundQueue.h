// The sound that waits for an encoder: a ring of a fixed capacity, so that queueing never allocates. What
// does not fit is left out, and the reader sees the gap by the sample number. Not thread-safe: guarded by its
// owner.
#pragma once
#include <QtGlobal>
#include <algorithm>
#include <vector>

#include "engine/audio/StereoSpan.h"

namespace korvia {

class SoundQueue {
 public:
  /// In samples of one side.
  explicit SoundQueue(int capacity) : ring_(2 * static_cast<std::size_t>(capacity)), capacity_(capacity) {}

  int size() const { return size_; }
  bool isEmpty() const { return size_ == 0; }
  /// `first` is the number of the first sample. False when the block is left out: there is no room for it, or
  /// it does not follow on what waits.
  bool push(StereoSpan sound, qint64 first) {
    if (isEmpty())
      first_ = first;
    if (first != first_ + size_ || sound.samples > capacity_ - size_)
      return false;
    for (int i = 0; i < sound.samples; ++i) {
      const std::size_t place = 2 * static_cast<std::size_t>((first_ + size_ + i) % capacity_);
      ring_[place] = sound.left[i];
      ring_[place + 1] = sound.right[i];
    }
    size_ += sound.samples;
    return true;
  }
  /// Moves everything to `interleaved`, left first, and returns the number of its first sample.
  qint64 popAll(std::vector<float>& interleaved) {
    interleaved.resize(2 * static_cast<std::size_t>(size_));
    for (int i = 0; i < size_; ++i) {
      const std::size_t place = 2 * static_cast<std::size_t>((first_ + i) % capacity_);
      std::copy_n(&ring_[place], 2, &interleaved[2 * static_cast<std::size_t>(i)]);
    }
    size_ = 0;
    return first_;
  }
  void clear() { size_ = 0; }

 private:
  std::vector<float> ring_;
  const int capacity_;
  qint64 first_ = 0;
  int size_ = 0;
};

}  // namespace korvia

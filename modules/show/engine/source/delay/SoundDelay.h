// Sound that comes out a fixed number of samples after it went in. Both ends move by the same number of
// samples between two ticks, in any order. Engine thread.
#pragma once
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "engine/audio/StereoSpan.h"

namespace korvia {

class SoundDelay {
 public:
  /// `samples`: the delay, at least kBlockSamplesMax. What comes out before the first sound is silence.
  explicit SoundDelay(std::int64_t samples);

  void push(StereoSpan sound);
  void pushSilence(int samples);
  void pull(StereoSpan out);
  /// As pull(), for sound that nobody hears.
  void skip(int samples) { read_ = (read_ + samples) % capacity_; }

 private:
  // Memory of the system that is zero and is given out when it is first touched, since a long delay needs
  // much of it.
  using Samples = std::unique_ptr<float[], decltype(&std::free)>;

  static Samples makeSamples(std::int64_t count);
  /// Calls `part(first in the ring, first in the piece, count)` for each of the one or two parts of the ring.
  template <typename Part>
  void forParts(std::int64_t position, int samples, Part part) const;

  const std::int64_t capacity_;
  Samples left_;
  Samples right_;
  std::int64_t written_;
  std::int64_t read_ = 0;
};

}  // namespace korvia

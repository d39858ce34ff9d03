// Memory for a block of sound, the piece in which sound is mixed: usually a frame's. One thread at a time.
#pragma once
#include <algorithm>
#include <array>

#include "engine/audio/StereoSpan.h"

namespace korvia {

/// The most samples of a block. A frame at 24 a second fits in; the sound of a longer time, after a stall or
/// at a low frame rate, is mixed in several blocks.
inline constexpr int kBlockSamplesMax = 2048;

class StereoBlock {
 public:
  /// The first `samples` samples, at most kBlockSamplesMax.
  StereoSpan span(int samples) { return {left_.data(), right_.data(), samples}; }
  void silence(int samples) {
    std::fill_n(left_.begin(), samples, 0.0F);
    std::fill_n(right_.begin(), samples, 0.0F);
  }

 private:
  alignas(64) std::array<float, kBlockSamplesMax> left_{};
  alignas(64) std::array<float, kBlockSamplesMax> right_{};
};

}  // namespace korvia

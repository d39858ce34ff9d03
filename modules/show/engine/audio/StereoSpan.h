// Samples of both sides in somebody else's memory: 48 kHz, floats from -1 to 1, one array a side. A plain
// value.
#pragma once

namespace korvia {

inline constexpr int kSampleRate = 48000;

struct StereoSpan {
  float* left = nullptr;
  float* right = nullptr;
  int samples = 0;

  /// `count` samples from `first` on; both within this span.
  StereoSpan part(int first, int count) const { return {left + first, right + first, count}; }
};

}  // namespace korvia

// Looks at sound that should hold a tone: its level and phase, its smoothness, and where it begins.
#pragma once
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <vector>

#include "engine/audio/StereoSpan.h"

namespace korvia::test {

/// Sound of both sides that a test has pulled.
struct Sound {
  std::vector<float> left;
  std::vector<float> right;

  int samples() const { return static_cast<int>(left.size()); }
  /// Room for `count` more samples, silent.
  StereoSpan append(int count) {
    const std::size_t first = left.size();
    left.resize(first + static_cast<std::size_t>(count));
    right.resize(first + static_cast<std::size_t>(count));
    return {left.data() + first, right.data() + first, count};
  }
};

inline float tone(double hz, double sample) {
  return static_cast<float>(std::sin(2 * std::numbers::pi * hz * sample / kSampleRate));
}

/// Amplitude and phase of a tone in `count` samples from `first` on; a window keeps other tones out.
inline std::complex<double> toneIn(const std::vector<float>& samples, double hz, int first, int count) {
  std::complex<double> sum = 0;
  double weights = 0;
  for (int i = 0; i < count; ++i) {
    const double weight = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * (i + 0.5) / count);
    const double angle = 2 * std::numbers::pi * hz * (first + i) / kSampleRate;
    sum += weight * static_cast<double>(samples[static_cast<std::size_t>(first + i)]) *
           std::complex<double>(std::cos(angle), -std::sin(angle));
    weights += weight;
  }
  return 2.0 * sum / weights;
}

/// The largest difference of a sample from what its two neighbours on each side tell of a tone of `hz`. A
/// click, a repeated or a missing sample of a tone of full level gives more than 0.01 at 1 kHz.
inline double roughness(const std::vector<float>& samples, double hz) {
  const double c = 2 * std::cos(2 * std::numbers::pi * hz / kSampleRate);
  double most = 0;
  for (std::size_t i = 1; i + 1 < samples.size(); ++i) {
    const double expected = (static_cast<double>(samples[i - 1]) + static_cast<double>(samples[i + 1])) / c;
    most = std::max(most, std::abs(static_cast<double>(samples[i]) - expected));
  }
  return most;
}

}  // namespace korvia::test

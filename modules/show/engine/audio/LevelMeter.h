// The level of a pair of sides for a meter on the console: the peak of each block, which falls slowly after a
// loud one. Engine thread.
#pragma once
#include <algorithm>
#include <cmath>

#include "engine/audio/StereoSpan.h"
#include "engine/kernels/SoundKernels.h"
#include "tagKorviaShowAudioLevel.h"

namespace korvia {

class LevelMeter {
 public:
  void add(StereoSpan block) {
    left_ = next(left_, peakOf(block.left, block.samples), block.samples);
    right_ = next(right_, peakOf(block.right, block.samples), block.samples);
  }
  void addSilence(int samples) {
    left_ = next(left_, 0, samples);
    right_ = next(right_, 0, samples);
  }
  void reset() { left_ = right_ = kFloorDb; }

  /// -60 to 0 dBFS as 0 to 100; what is lower or higher is limited.
  tagKorviaShowAudioLevel::Pair level() const { return {scaled(left_), scaled(right_)}; }

 private:
  static constexpr float kFloorDb = -60;
  static constexpr float kFallDbPerSecond = 20;

  static float next(float levelDb, float peak, int samples) {
    const float fallenDb =
        levelDb - kFallDbPerSecond * static_cast<float>(samples) / static_cast<float>(kSampleRate);
    const float peakDb = peak > 0 ? 20 * std::log10(peak) : kFloorDb;
    return std::clamp(std::max(peakDb, fallenDb), kFloorDb, 0.0F);
  }
  static float scaled(float levelDb) { return (levelDb - kFloorDb) * 100 / -kFloorDb; }

  float left_ = kFloorDb;
  float right_ = kFloorDb;
};

}  // namespace korvia

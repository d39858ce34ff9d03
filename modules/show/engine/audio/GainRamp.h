// Fades sound in and out without a click. The gain follows a smooth curve and may turn round at any moment.
// One thread at a time; the owner locks.
#pragma once
#include "StereoSpan.h"

namespace korvia {

class GainRamp {
 public:
  /// 5 ms: too short to be heard as a fade, long enough not to click.
  static constexpr int kSamples = kSampleRate / 200;

  enum class Gain { Silent, Full };
  explicit GainRamp(Gain gain) : position_(gain == Gain::Full ? kSamples : 0), target_(position_) {}

  /// The gain goes there over the next samples.
  void fadeTo(Gain gain) { target_ = gain == Gain::Full ? kSamples : 0; }
  bool isSilent() const { return position_ == 0 && target_ == 0; }
  bool isRamping() const { return position_ != target_; }
  /// True after the end of the fade too.
  bool isFadingOut() const { return target_ == 0; }
  /// Samples until the ramp has ended.
  int samplesLeft() const { return target_ > position_ ? target_ - position_ : position_ - target_; }
  /// The gain of the next sample, 0 to 1.
  float next();
  void apply(StereoSpan sound);

 private:
  int position_;  // from 0, silent, to kSamples, full gain
  int target_;
};

}  // namespace korvia

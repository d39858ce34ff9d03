#include "GainRamp.h"

#include <algorithm>

namespace korvia {

float GainRamp::next() {
  if (isRamping())
    position_ += target_ > position_ ? 1 : -1;
  const float t = static_cast<float>(position_) / kSamples;
  return t * t * (3 - 2 * t);
}

void GainRamp::apply(StereoSpan sound) {
  int i = 0;
  for (; i < sound.samples && isRamping(); ++i) {
    const float gain = next();
    sound.left[i] *= gain;
    sound.right[i] *= gain;
  }
  if (position_ == 0) {
    std::fill(sound.left + i, sound.left + sound.samples, 0.0F);
    std::fill(sound.right + i, sound.right + sound.samples, 0.0F);
  }
}

}  // namespace korvia

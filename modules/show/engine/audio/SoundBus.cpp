#include "SoundBus.h"

namespace korvia {

void SoundBus::begin(int samples) {
  samples_ = samples;
  block_.silence(samples);
}

void SoundBus::add(StereoSpan sound, float from, float to) {
  if (from == 0 && to == 0)
    return;
  const StereoSpan mix = block();
  addRamped(sound.left, from, to, mix.left, sound.samples);
  addRamped(sound.right, from, to, mix.right, sound.samples);
}

void SoundBus::finish(float volume) {
  const StereoSpan mix = block();
  scaleRamped(mix.left, volume_, volume, mix.samples);
  scaleRamped(mix.right, volume_, volume, mix.samples);
  volume_ = volume;
  limiter_.process(mix);
  meter_.add(mix);
}

void SoundBus::reset() {
  samples_ = 0;
  limiter_.reset();
  meter_.reset();
}

}  // namespace korvia

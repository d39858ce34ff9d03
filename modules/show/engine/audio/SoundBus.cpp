#include "SoundBus.h"

#include <utility>

namespace korvia {

void SoundBus::begin(int samples) {
  samples_ = samples;
  block_.silence(samples);
}

void SoundBus::add(StereoSpan sound, float from, float to) {
  if (from == 0 && to == 0)
    return;
  silentSamples_ = 0;
  const StereoSpan mix = block();
  addRamped(sound.left, from, to, mix.left, sound.samples);
  addRamped(sound.right, from, to, mix.right, sound.samples);
}

void SoundBus::finish(float volume) {
  const StereoSpan mix = block();
  const float before = std::exchange(volume_, volume);
  if (silentSamples_ >= kSettledSamples) {
    meter_.addSilence(mix.samples);
    return;
  }
  scaleRamped(mix.left, before, volume, mix.samples);
  scaleRamped(mix.right, before, volume, mix.samples);
  limiter_.process(mix);
  meter_.add(mix);
  silentSamples_ += mix.samples;
  if (silentSamples_ >= kSettledSamples)
    limiter_.reset();
}

void SoundBus::reset() {
  samples_ = 0;
  limiter_.reset();
  meter_.reset();
}

}  // namespace korvia

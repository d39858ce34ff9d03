// One of the two mixes of sound: what is added to it, times its volume, limited, and its level. Engine
// thread.
#pragma once
#include "engine/audio/LevelMeter.h"
#include "engine/audio/Limiter.h"
#include "engine/audio/StereoBlock.h"

namespace korvia {

class SoundBus {
 public:
  /// Begins a block of `samples`, silent.
  void begin(int samples);
  /// Adds a channel, whose gain goes from `from` to `to` over the block.
  void add(StereoSpan sound, float from, float to);
  /// Ends the block: the volume goes from that of the block before to `volume`.
  void finish(float volume);
  /// Forgets the sound and the level.
  void reset();

  /// The finished block, until the next one begins.
  StereoSpan block() { return block_.span(samples_); }
  tagKorviaShowAudioLevel::Pair level() const { return meter_.level(); }

 private:
  /// After so long a silence nothing is left in the limiter, and its gain is back.
  static constexpr int kSettledSamples = kSampleRate;

  StereoBlock block_;
  int samples_ = 0;
  int silentSamples_ = 0;  // since the last sound, up to kSettledSamples
  float volume_ = 1;
  Limiter limiter_;
  LevelMeter meter_;
};

}  // namespace korvia

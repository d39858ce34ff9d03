// The sound of the show: mixes the channels into preview and program, block by block, and measures levels.
// Program follows the mix mode, preview sounds as the channel on it. Every gain changes over a block, so that
// nothing clicks. Sound leaves Limiter::kLatencySamples after the picture that it belongs to. Neither
// allocates nor waits. Engine thread, except for the levels.
#pragma once
#include <array>
#include <cstdint>

#include "ThreadSafety.h"
#include "backend/IShowBackend.h"
#include "engine/audio/ChannelSounds.h"
#include "engine/audio/LevelMeter.h"
#include "engine/audio/MixerSettings.h"
#include "engine/audio/SoundBus.h"
#include "engine/audio/StereoBlock.h"

namespace korvia {

class AudioMixer {
 public:
  /// `channels` must outlive the mixer.
  explicit AudioMixer(ChannelSounds& channels) : channels_(channels) {}

  /// Results go to `host` and the sound of the channels to its sink from here on; null ends that.
  void setHost(IShowBackendHost* host);
  /// A show begins, in silence. Modes and volumes stay.
  void open(FrameRate rate);
  /// The show ends: the levels fall to silence.
  void close();

  // Events. Each is answered with what holds now, also when it was refused.
  void setMixMode(int mode);
  void setVolume(int object, float volume);
  /// The answer tells whether the channel feeds program, which depends on the mode too.
  void setChannelMix(int channel, int enabled);

  // The frame.
  /// The sound of this tick and of the frames missed before it is due; the channels have been pulled for it.
  void beginTick(const FrameTick& tick, const BusChannels& buses);
  /// Mixes the next block of the tick; false when the tick has no more. Usually a tick is one block.
  bool mixBlock();
  /// The mixed block, limited, valid until the next beginTick() or mixBlock().
  StereoSpan program() { return program_.block(); }
  StereoSpan preview() { return preview_.block(); }

  /// Copies the levels out. Any thread.
  void getLevels(tagKorviaShowAudioLevel& levels) const;

 private:
  /// A channel or the karaoke on its way into the mix: the gains at the end of the last block.
  struct Input {
    float volume = 1;
    float toProgram = 0;
    float toPreview = 0;
    LevelMeter meter;
    bool isReported = false;  // that its samples are no sound
  };

  void mixInput(int slot, int samples);
  /// Pulls into sound_. False for silence.
  bool pull(int slot, int samples);
  void publishLevels();

  ChannelSounds& channels_;
  IShowBackendHost* host_ = nullptr;
  IKorviaShowEngineSink* sink_ = nullptr;
  FrameRate rate_;
  MixerSettings settings_;
  BusChannels buses_;
  bool isOpen_ = false;
  std::int64_t samplesLeft_ = 0;  // of this tick
  std::array<Input, kSourceSlotCount> inputs_;
  StereoBlock sound_;  // of the channel that is being mixed
  std::array<std::int16_t, 2 * kBlockSamplesMax> samples16_{};
  SoundBus preview_;
  SoundBus program_;

  mutable Mutex levelsMutex_;
  tagKorviaShowAudioLevel levels_ GUARDED_BY(levelsMutex_);
};

}  // namespace korvia

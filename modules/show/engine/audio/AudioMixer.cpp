#include "AudioMixer.h"

#include <algorithm>
#include <utility>

#include "KorviaShowEvents.h"
#include "engine/EngineLog.h"
#include "engine/kernels/SoundKernels.h"

namespace korvia {

namespace {

// 40 dB above full scale. No recording is louder; a file with such samples is damaged.
constexpr float kPeakMax = 100;
constexpr unsigned kBytesPerSample = 2 * sizeof(std::int16_t);
constexpr int kSides = 2;
constexpr int kBits = 16;

KorviaShowObjectID objectOf(int slot) {
  return slot == kKaraokeSlot ? KaraokeObject : static_cast<KorviaShowObjectID>(MediaChannel + slot);
}

}  // namespace

void AudioMixer::setHost(IShowBackendHost* host) {
  host_ = host;
  sink_ = host ? host->engineSink() : nullptr;
}

void AudioMixer::open(FrameRate rate) {
  rate_ = rate;
  close();
  isOpen_ = true;
  publishLevels();
}

void AudioMixer::close() {
  isOpen_ = false;
  samplesLeft_ = 0;
  buses_ = {};
  for (Input& input : inputs_) {
    input.meter.reset();
    input.toProgram = input.toPreview = 0;
    input.isReported = false;
  }
  preview_.reset();
  program_.reset();
  publishLevels();
}

void AudioMixer::setMixMode(int mode) {
  settings_.setMode(mode);
  host_->postResult(ShowEventAudioMixMode, int{settings_.mode()});
}

void AudioMixer::setVolume(int object, float volume) {
  settings_.setVolume(object, volume);
  host_->postResult(ShowEventVolume, object, settings_.volume(object));
}

void AudioMixer::setChannelMix(int channel, int enabled) {
  settings_.enable(channel, enabled != 0);
  const int slot = sourceIndexOf(channel);
  const bool isHeard = slot >= 0 && settings_.isHeard(slot, buses_);
  host_->postResult(ShowEventChannelMix, channel, isHeard ? 1 : 0);
}

void AudioMixer::beginTick(const FrameTick& tick, const BusChannels& buses) {
  const int frames = 1 + tick.missed;
  samplesLeft_ = rate_.samplesIn(tick.number - frames, frames, kSampleRate);
  buses_ = buses;
}

bool AudioMixer::mixBlock() {
  if (samplesLeft_ <= 0)
    return false;
  const int samples = static_cast<int>(std::min<std::int64_t>(samplesLeft_, kBlockSamplesMax));
  samplesLeft_ -= samples;
  preview_.begin(samples);
  program_.begin(samples);
  for (int slot = 0; slot < kSourceSlotCount; ++slot)
    mixInput(slot, samples);
  preview_.finish(settings_.volume(PVMObject));
  program_.finish(settings_.volume(PGMObject));
  publishLevels();
  return true;
}

void AudioMixer::mixInput(int slot, int samples) {
  Input& input = inputs_[static_cast<std::size_t>(slot)];
  const float volume = settings_.volume(objectOf(slot));
  const float toProgram = settings_.programGain(slot, buses_);
  const float toPreview = settings_.previewGain(slot, buses_);
  // Every channel is pulled, also one that is not heard, so that its queue runs on.
  if (pull(slot, samples)) {
    const StereoSpan sound = sound_.span(samples);
    scaleRamped(sound.left, input.volume, volume, samples);
    scaleRamped(sound.right, input.volume, volume, samples);
    input.meter.add(sound);
    program_.add(sound, input.toProgram, toProgram);
    preview_.add(sound, input.toPreview, toPreview);
  } else {
    input.meter.addSilence(samples);
  }
  input.volume = volume;
  input.toProgram = toProgram;
  input.toPreview = toPreview;
}

bool AudioMixer::pull(int slot, int samples) {
  const StereoSpan sound = sound_.span(samples);
  if (!channels_.pullSound(slot, sound))
    return false;
  // A single sample that is not a number would stay in the limiter for ever.
  if (!(peakOf(sound.left, samples) <= kPeakMax && peakOf(sound.right, samples) <= kPeakMax)) {
    if (!std::exchange(inputs_[static_cast<std::size_t>(slot)].isReported, true))
      qCWarning(logEngine, "channel %d gives samples that are no sound, they are left out", slot);
    return false;
  }
  if (sink_) {
    interleave16(sound.left, sound.right, samples16_.data(), samples);
    sink_->onAudioData(objectOf(slot), samples16_.data(), static_cast<unsigned>(samples) * kBytesPerSample,
                       unsigned{kSampleRate}, kSides, nullptr, kBits);
  }
  return true;
}

void AudioMixer::publishLevels() {
  MutexLock lock(levelsMutex_);
  for (int slot = 0; slot < kMediaChannelMax; ++slot) {
    levels_.setChannel(slot, inputs_[static_cast<std::size_t>(slot)].meter.level());
    levels_.setActive(slot, isOpen_ && settings_.isHeard(slot, buses_) ? 1 : 0);
  }
  levels_.setPvm(preview_.level());
  levels_.setPgm(program_.level());
}

void AudioMixer::getLevels(tagKorviaShowAudioLevel& levels) const {
  MutexLock lock(levelsMutex_);
  levels = levels_;
}

}  // namespace korvia

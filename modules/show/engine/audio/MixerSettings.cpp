#include "MixerSettings.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace korvia {

namespace {

/// Slot of a channel that can be on a bus; the short ids of sources cannot.
int slotOnBus(int channel) {
  return channel >= MediaChannel ? sourceIndexOf(channel) : -1;
}

}  // namespace

bool MixerSettings::setMode(int mode) {
  if (mode < AudioMixModeAuto || mode > AudioMixModeManual)
    return false;
  mode_ = static_cast<KorviaShowAudioMixMode>(mode);
  return true;
}

int MixerSettings::volumePlace(int object) {
  if (object == PVMObject)
    return kPreviewPlace;
  return object == PGMObject ? kProgramPlace : sourceIndexOf(object);
}

bool MixerSettings::setVolume(int object, float volume) {
  const int place = volumePlace(object);
  if (place < 0 || std::isnan(volume))
    return false;
  volumes_[static_cast<std::size_t>(place)] = std::clamp(volume, 0.0F, kVolumeMax);
  return true;
}

bool MixerSettings::enable(int channel, bool enabled) {
  const int slot = sourceIndexOf(channel);
  if (slot < 0 || slot == kKaraokeSlot)
    return false;
  enabled_[static_cast<std::size_t>(slot)] = enabled;
  return true;
}

float MixerSettings::volume(int object) const {
  const int place = volumePlace(object);
  return place < 0 ? 0 : volumes_[static_cast<std::size_t>(place)];
}

float MixerSettings::programGain(int slot, const BusChannels& buses) const {
  if (slot == kKaraokeSlot || mode_ == AudioMixModeAll)
    return 1;
  if (mode_ == AudioMixModeManual)
    return enabled_[static_cast<std::size_t>(slot)] ? 1 : 0;
  const bool isProgram = slot == slotOnBus(buses.program);
  const bool isNext = slot == slotOnBus(buses.next);
  const double position = std::clamp(buses.position, 0.0, 1.0);
  if (isProgram && isNext)
    return 1;
  // The squares of both gains add up to 1, which keeps the power of sounds that do not correlate.
  if (isProgram)
    return static_cast<float>(std::cos(position * std::numbers::pi / 2));
  return isNext ? static_cast<float>(std::sin(position * std::numbers::pi / 2)) : 0;
}

float MixerSettings::previewGain(int slot, const BusChannels& buses) const {
  return slot == slotOnBus(buses.preview) ? 1 : 0;
}

}  // namespace korvia

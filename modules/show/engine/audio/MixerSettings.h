// What the operator has set in the mixer, and which channels sound on which bus by that. A plain value,
// engine thread.
#pragma once
#include <array>

#include "KorviaShowObjectID.h"
#include "engine/bus/BusChannels.h"
#include "tagKorviaShowAudioMixerParam.h"

namespace korvia {

class MixerSettings {
 public:
  /// False, with nothing changed, for a mode that does not exist.
  bool setMode(int mode);
  /// The volume of a channel, the karaoke or a bus, limited to 0 to kVolumeMax. False, with nothing changed,
  /// for any other object and for what is not a number.
  bool setVolume(int object, float volume);
  /// Whether a media channel is mixed in the manual mode. False for any other object.
  bool enable(int channel, bool enabled);

  KorviaShowAudioMixMode mode() const { return mode_; }
  /// 0 for an object without a volume.
  float volume(int object) const;

  // Gains by source slot, without the volumes.
  /// Auto: the channels on program, with equal power during a take. All: every media channel. Manual: the
  /// enabled ones. The karaoke always.
  float programGain(int slot, const BusChannels& buses) const;
  /// The channel on preview.
  float previewGain(int slot, const BusChannels& buses) const;
  /// A channel feeds program, whatever its volume is.
  bool isHeard(int slot, const BusChannels& buses) const { return programGain(slot, buses) > 0; }

  /// 12 dB.
  static constexpr float kVolumeMax = 4;

 private:
  // The places of the volumes: a source's by its slot, then those of the buses.
  static constexpr int kPreviewPlace = kSourceSlotCount;
  static constexpr int kProgramPlace = kSourceSlotCount + 1;
  /// -1 for an object without a volume.
  static int volumePlace(int object);

  KorviaShowAudioMixMode mode_ = AudioMixModeAuto;
  std::array<bool, kMediaChannelMax> enabled_{};
  std::array<float, kSourceSlotCount + 2> volumes_{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
};

}  // namespace korvia

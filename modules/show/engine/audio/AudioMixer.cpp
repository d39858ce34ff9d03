#include "AudioMixer.h"

#include "KorviaShowEvents.h"

namespace korvia {

void AudioMixer::setMixMode(int mode) {
  host_->postResult(ShowEventAudioMixMode, mode);
}

void AudioMixer::setVolume(int object, float volume) {
  host_->postResult(ShowEventVolume, object, volume);
}

void AudioMixer::setChannelMix(int channel, int state) {
  host_->postResult(ShowEventChannelMix, channel, state);
}

}  // namespace korvia

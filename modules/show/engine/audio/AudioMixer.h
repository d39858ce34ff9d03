// The sound of the buses. There is no sound yet: the mixer answers the events of the console and gives
// silent levels. Engine thread, except for the levels.
#pragma once
#include "backend/IShowBackend.h"

namespace korvia {

class AudioMixer {
 public:
  /// Results go to `host` from here on; null ends that.
  void setHost(IShowBackendHost* host) { host_ = host; }

  // Events. The results tell the console that they were handled.
  void setMixMode(int mode);
  void setVolume(int object, float volume);
  void setChannelMix(int channel, int state);

  /// Copies the levels out. Any thread.
  void getLevels(tagKorviaShowAudioLevel& levels) const { levels = {}; }

 private:
  IShowBackendHost* host_ = nullptr;
};

}  // namespace korvia

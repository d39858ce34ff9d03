// The sound of the buses. There is no sound yet: the mixer answers what the console asks of it and gives
// silent levels. Engine thread, but for the levels.
#pragma once
#include "backend/IShowBackend.h"

namespace korvia {

class AudioMixer {
 public:
  /// Results go to `host` from here on; null ends that.
  void setHost(IShowBackendHost* host) { host_ = host; }

  // Events; the console learns from the results that its wish is known.
  void setMixMode(int mode);
  void setVolume(int object, float volume);
  void setChannelMix(int channel, int state);

  /// Copies the levels out. Any thread.
  void getLevels(tagKorviaShowAudioLevel& levels) const { levels = {}; }

 private:
  IShowBackendHost* host_ = nullptr;
};

}  // namespace korvia

// Where the mixer gets the sound of the channels. Engine thread.
#pragma once
#include "engine/audio/StereoSpan.h"

namespace korvia {

class ChannelSounds {
 public:
  /// The next piece of the sound of this tick; false, with nothing written, for silence. `slot` as given by
  /// sourceIndexOf(). Never blocks.
  virtual bool pullSound(int slot, StereoSpan piece) = 0;

 protected:
  ~ChannelSounds() = default;
};

}  // namespace korvia

// Takes the picture and the sound of another source at each tick, as they are before the channel's look and
// volume. ChannelBank feeds it when all pictures of the tick are pulled, so the order of pulling does not
// matter. Engine thread.
#pragma once
#include "engine/audio/StereoSpan.h"
#include "engine/frame/Frame.h"

namespace korvia {

class SourceTap {
 public:
  /// The slot of the source that is tapped, as given by sourceIndexOf(). Fixed.
  virtual int tappedSlot() const = 0;
  /// The picture of this tick in the size of the show, null for black. `ticks` is 1 plus the frames missed
  /// since the last call. Never blocks.
  virtual void onTappedPicture(const FrameRef& picture, int ticks) = 0;
  /// The next piece of the tick's sound; every piece comes as sound or as silence. Never blocks.
  virtual void onTappedSound(StereoSpan piece) = 0;
  virtual void onTappedSilence(int samples) = 0;

 protected:
  ~SourceTap() = default;
};

}  // namespace korvia

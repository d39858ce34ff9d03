// What changes a channel's picture on its way from the source to the buses: its look, its key, its
// background. Engine thread.
#pragma once
#include "engine/frame/Frame.h"

namespace korvia {

/// The pictures of all channels at this tick.
class ChannelPictures {
 public:
  /// The channel's picture; never null. Within a cycle of channels that show each other it is the picture of
  /// the tick before.
  virtual FrameRef picture(int channelId) = 0;

 protected:
  ~ChannelPictures() = default;
};

class ChannelStage {
 public:
  virtual ~ChannelStage() = default;
  /// Makes the picture that leaves the stage of the one that comes in, both of the render size. It may have
  /// alpha, its colours premultiplied. Called once a tick at most, and only when somebody looks.
  virtual FrameRef apply(const FrameRef& picture, ChannelPictures& others) = 0;
};

}  // namespace korvia

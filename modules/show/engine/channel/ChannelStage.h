// A step that changes a channel's picture between its source and the buses: look, key or background. Engine
// thread.
#pragma once
#include "engine/frame/Frame.h"

namespace korvia {

/// The pictures of all channels at this tick.
class ChannelPictures {
 public:
  /// The channel's picture; never null. In a cycle of channels that show each other it is the picture of the
  /// tick before.
  virtual FrameRef picture(int channelId) = 0;

 protected:
  ~ChannelPictures() = default;
};

class ChannelStage {
 public:
  virtual ~ChannelStage() = default;
  /// Makes the changed picture. Both pictures have the render size and may have alpha, with premultiplied
  /// colours. Called at most once a tick, and only when the channel's picture is asked for.
  virtual FrameRef apply(const FrameRef& picture, ChannelPictures& others) = 0;
};

}  // namespace korvia

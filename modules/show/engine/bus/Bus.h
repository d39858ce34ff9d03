// A bus: the channel on it and the layers over it. There are two, preview and program. Engine thread.
#pragma once
#include "engine/bus/Compositor.h"
#include "engine/bus/LayerStack.h"

namespace korvia {

class Bus {
 public:
  /// Channel id; 0 while nothing was selected.
  int channel() const { return channel_; }
  void select(int channel) { channel_ = channel; }
  LayerStack& layers() { return layers_; }
  /// `base`, which is opaque, with the layers of the bus blended over it; `base` itself when there are none.
  /// `pool` provides opaque frames of its size.
  FrameRef withLayers(const FrameRef& base, FramePool& pool) {
    return compositor_.over(base, layers_.layers(), pool);
  }

 private:
  int channel_ = 0;
  LayerStack layers_;
  Compositor compositor_;
};

}  // namespace korvia

// Blends layers over a picture. Each bus has one, which keeps its last result, so that a still picture under
// unchanged layers is not blended again. Engine thread.
#pragma once
#include <vector>

#include "engine/bus/PosedBlend.h"
#include "engine/bus/StackedLayer.h"
#include "engine/frame/FramePool.h"

namespace korvia {

class Compositor {
 public:
  /// `base` with the layers blended over it, the first one lowest: `base` itself when there are none, else a
  /// frame of `pool`, which provides opaque frames of the size of `base`. Null layers and layers for another
  /// size are skipped. The alpha of `base` is ignored.
  FrameRef over(const FrameRef& base, const std::vector<StackedLayer>& layers, FramePool& pool);

 private:
  void copy(const Frame& from, Frame& to) const;

  /// What a layer looks like on the bus.
  struct Look {
    std::uint64_t version = 0;
    LayerPose pose;
    friend bool operator==(const Look&, const Look&) = default;
  };

  bool isLastResult(const FrameRef& base) const { return result_ && base == base_ && looks_ == lastLooks_; }

  // The inputs of the last result.
  FrameRef base_;
  std::vector<Look> lastLooks_;
  FrameRef result_;
  // Of this call's layers; kept so that a frame does not allocate.
  std::vector<Look> looks_;
  std::vector<RowRange> rows_;
  PosedBlend posed_;
};

}  // namespace korvia

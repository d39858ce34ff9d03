// Blends layers over a picture. Each bus has one, which keeps its last result, so that a still picture under
// unchanged layers is not blended again. Engine thread.
#pragma once
#include <vector>

#include "engine/bus/Layer.h"
#include "engine/frame/FramePool.h"

namespace korvia {

class Compositor {
 public:
  /// `base` with the layers blended over it, the first one lowest: `base` itself when there are none, else a
  /// frame of `pool`, which provides opaque frames of the size of `base`. Null layers and layers for another
  /// size are skipped. The alpha of `base` is ignored.
  FrameRef over(const FrameRef& base, const std::vector<LayerRef>& layers, FramePool& pool);

 private:
  bool isLastResult(const FrameRef& base) const {
    return result_ && base == base_ && versions_ == lastVersions_;
  }

  // The inputs of the last result.
  FrameRef base_;
  std::vector<std::uint64_t> lastVersions_;
  FrameRef result_;
  std::vector<std::uint64_t> versions_;  // of this call's layers; kept so that a frame does not allocate
};

}  // namespace korvia

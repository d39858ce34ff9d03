// Blends layers over a picture. One for each bus: it keeps its last result, so that a picture that stands
// still under layers that do not change is not blended again. Engine thread.
#pragma once
#include <vector>

#include "engine/bus/Layer.h"
#include "engine/frame/FramePool.h"

namespace korvia {

class Compositor {
 public:
  /// `base` under the layers, the first one lowest: `base` itself when none covers it, else a frame of
  /// `pool`, which gives opaque frames of the base's size. Null layers, and layers for another size, cover
  /// nothing. `base` is taken as opaque.
  FrameRef over(const FrameRef& base, const std::vector<LayerRef>& layers, FramePool& pool);

 private:
  bool isLastResult(const FrameRef& base) const {
    return result_ && base == base_ && versions_ == lastVersions_;
  }

  // What the last result was made of.
  FrameRef base_;
  std::vector<std::uint64_t> lastVersions_;
  FrameRef result_;
  std::vector<std::uint64_t> versions_;  // of this call's layers; kept so that a frame does not allocate
};

}  // namespace korvia

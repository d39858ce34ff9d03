// Blends a layer that is moved, scaled, rotated or faded. Engine thread.
#pragma once
#include <cstdint>
#include <vector>

#include "engine/bus/Layer.h"
#include "engine/bus/LayerPose.h"

namespace korvia {

/// Keeps its rows between calls, so that a frame does not allocate.
class PosedBlend {
 public:
  /// Blends the layer over `onto`, sampled bilinearly. A layer whose borders are transparent has smooth edges
  /// at any angle. Poses that are no numbers show nothing.
  void blend(const Layer& layer, const LayerPose& pose, Frame& onto);

 private:
  std::vector<std::int32_t> x_;
  std::vector<std::int32_t> y_;
  std::vector<std::uint8_t> samples_;
  std::vector<std::uint8_t> alpha_;
};

}  // namespace korvia

// Blends a layer that is moved, scaled, rotated or faded. Engine thread.
#pragma once
#include <array>
#include <cstdint>

#include "engine/bus/Layer.h"
#include "engine/bus/LayerPose.h"
#include "engine/kernels/PixelKernels.h"

namespace korvia {

/// Rows of luma, from the first one to before `end`.
struct RowRange {
  int begin = 0;
  int end = 0;
};

class PosedBlend {
 public:
  /// Blends a movable layer over `onto`, sampled bilinearly. A layer whose borders are transparent has smooth
  /// edges at any angle. Poses that are no numbers show nothing.
  void blend(const Layer& layer, const LayerPose& pose, Frame& onto);

  /// The rows of a picture of this size that the layer can touch.
  static RowRange rows(const Layer& layer, const LayerPose& pose, FrameSize bus);

 private:
  void blendMoved(const Layer& layer, const LayerPose& pose, int weight, Frame& onto);
  void blendTurned(const Layer& layer, const LayerPose& pose, int weight, Frame& onto);

  // A part of a row: luma or U, V, alpha.
  using Part = std::array<std::uint8_t, kPixelsMost>;
  Part first_;
  Part second_;
  Part alpha_;
};

}  // namespace korvia

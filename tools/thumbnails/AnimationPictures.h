// Draws the entrances and exits of texts, with the engine's own poses and blending. A plate with two lines
// stands for the text, so that the pictures do not depend on fonts. Needs a QGuiApplication; main thread.
#pragma once
#include <QImage>
#include <vector>

#include "engine/bus/Compositor.h"

namespace korvia {

class AnimationPictures {
 public:
  /// All pictures will have this size, in pixels.
  explicit AnimationPictures(QSize size);

  QSize size() const { return size_; }
  /// The plate at a position of 0 to 1 of an entrance or exit, opaque.
  QImage picture(int effect, double position);
  /// The whole animation in one picture: the plate at a telling moment, and paler plates where it was before,
  /// the fainter the longer ago.
  /// @param effect 0 to 16 or 26 to 42.
  QImage tile(int effect);

 private:
  LayerPose poseAt(int effect, double position) const;
  QImage over(int effect, const std::vector<StackedLayer>& plates);

  const QSize size_;
  FramePool frames_;
  const FrameRef entranceBackground_;
  const FrameRef exitBackground_;
  const LayerRef plate_;
  const LayerRef trailPlate_;
  Compositor compositor_;
};

}  // namespace korvia

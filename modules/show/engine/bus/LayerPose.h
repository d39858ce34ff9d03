// Where and how a layer is shown for one frame: moved, scaled, rotated, faded. A plain value, any thread.
#pragma once

namespace korvia {

struct LayerPose {
  /// Pixels of the bus's picture, to the right and down.
  double moveX = 0;
  double moveY = 0;
  /// Around the anchor.
  double scaleX = 1;
  double scaleY = 1;
  /// Clockwise, around the anchor, after the scaling.
  double rotationDegrees = 0;
  /// The fixed point of scale and rotation, in pixels of the bus's picture, before the move.
  double anchorX = 0;
  double anchorY = 0;
  /// 0 to 1.
  double opacity = 1;

  friend bool operator==(const LayerPose&, const LayerPose&) = default;
  /// Whether the layer is shown as it was drawn.
  bool isPlain() const {
    return moveX == 0 && moveY == 0 && scaleX == 1 && scaleY == 1 && rotationDegrees == 0 && opacity == 1;
  }
};

}  // namespace korvia

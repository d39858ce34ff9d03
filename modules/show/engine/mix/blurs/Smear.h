// Rotates and scales pictures around their centre, and smears them along such a movement. Engine thread.
#pragma once
#include "engine/frame/PlaneView.h"
#include "engine/mix/blurs/SmallPicture.h"

namespace korvia {

/// A movement around the centre of the picture: a rotation in radians, clockwise on the screen, and a growth
/// as the natural logarithm of the scale, from -3 on.
struct Movement {
  double turn = 0;
  double growth = 0;
};

/// A rotated and scaled plane. Samples outside the source repeat its edge; without movement it is exactly
/// the source.
class MovedPlane {
 public:
  /// `centre` is the fixed point of the movement.
  MovedPlane(const PlaneView& plane, PlanePoint centre, Movement movement);
  /// `count` samples of row `y` from column `begin` on.
  void row(int y, int begin, int count, std::uint8_t* out) const;

 private:
  PlaneView plane_;
  // The source of the sample at 0, 0 and the step of the source for one column to the right; the step for
  // one row down is the same, rotated by 90 degrees. In 1/65536 sample.
  std::int64_t originX_;
  std::int64_t originY_;
  std::int64_t stepX_;
  std::int64_t stepY_;
};

/// Rotates and scales a small picture. `size` is the size of the full picture.
void moveSmall(const Frame& picture, FrameSize size, Movement movement, Frame& out);

/// Smears a small picture evenly along the movement, from half of it back to half of it forward. `size` is
/// the size of the full picture. Uses frame 1 and buffers 0 and 1 of the scratch.
void smearSmall(Frame& picture, FrameSize size, Movement movement, TransitionScratch& scratch);

/// Draws the fade, with `weight` of `to` 0 to 256, smeared along the movement. `pace` is the length of the
/// smear at a distance of one sample from the centre. Uses frames and buffers of the scratch as the
/// functions of small pictures do.
void mixSmeared(const Frame& from, const Frame& to, int weight, Movement movement, double pace,
                TransitionScratch& scratch, Frame& out);

}  // namespace korvia

// Pictures turned and scaled about their middle, and smeared along such a movement. Engine thread.
#pragma once
#include "engine/frame/PlaneView.h"
#include "engine/mix/blurs/SmallPicture.h"

namespace korvia {

/// About the middle of the picture: a turn in radians, clockwise on the screen, and a growth as the natural
/// logarithm of the scale, down to -3.
struct Movement {
  double turn = 0;
  double growth = 0;
};

/// A plane as a movement leaves it. Outside it shows its nearest sample; without movement exactly itself.
class MovedPlane {
 public:
  /// `centre` is the point of the plane that stays.
  MovedPlane(const PlaneView& plane, PlanePoint centre, Movement movement);
  /// `count` samples of row `y` from column `begin` on.
  void row(int y, int begin, int count, std::uint8_t* out) const;

 private:
  PlaneView plane_;
  // Where the sample at 0, 0 comes from, and what a step to the right adds to that; a step down adds the
  // same, turned by a right angle. In 1/65536 sample.
  std::int64_t originX_;
  std::int64_t originY_;
  std::int64_t stepX_;
  std::int64_t stepY_;
};

/// A small picture, of a picture of `size`, as the movement leaves it.
void moveSmall(const Frame& picture, FrameSize size, Movement movement, Frame& out);

/// Smears a small picture, of a picture of `size`, evenly along the movement: from half of it back to half of
/// it onwards. Uses the scratch's frame 1 and buffers 0 and 1.
void smearSmall(Frame& picture, FrameSize size, Movement movement, TransitionScratch& scratch);

}  // namespace korvia

// Pictures that move past each other without changing their size. Engine thread.
#pragma once
#include "engine/mix/Transition.h"
#include "engine/mix/glides/PictureSide.h"

namespace korvia {

class Glide final : public Transition {
 public:
  enum Movement {
    In,    ///< the new picture comes in from the side, over the old one
    Out,   ///< the old picture goes out to the side and uncovers the new one
    Push,  ///< the new picture comes in from the side and pushes the old one out
  };
  Glide(Movement movement, PictureSide side) : movement_(movement), side_(directionOf(side)) {}

  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;

 private:
  Movement movement_;
  SideDirection side_;
};

}  // namespace korvia

// A fade that spreads like the rings of a drop that falls into water. Engine thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

/// How far the fade is at a distance from the centre, and how it is lit there.
struct DropPoint {
  double weight = 0;  ///< of the new picture, 0 to 1
  double light = 0;   ///< that luma gains, as a part of it; negative where it becomes darker
};

/// At `distance`, 1 being the corners, when the take is at `position`. A soft front as broad as most of the
/// picture runs outwards; in it waves lighten and darken the picture and hurry or delay its fade.
DropPoint dropPointAt(double distance, double position);

class DropFade final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia

// A fade that spreads in rings, like a drop that falls into water. Engine thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

/// The weight of the fade and the light at a distance from the centre.
struct DropPoint {
  double weight = 0;  ///< of the new picture, 0 to 1
  double light = 0;   ///< change of luma as a part of it, negative for darker
};

/// At `distance`, 1 being the corners, when the take is at `position`. A soft front, 0.75 half diagonals
/// broad, runs outwards. Waves in it lighten and darken the picture, and advance and delay the fade.
DropPoint dropPointAt(double distance, double position);

class DropFade final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia

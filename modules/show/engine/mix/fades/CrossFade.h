// A linear fade from one picture to the other. Engine thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

class CrossFade final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Fades all planes; `weight` of `to` is 0 to 256.
void crossFade(const Frame& from, const Frame& to, int weight, Frame& out);

}  // namespace korvia

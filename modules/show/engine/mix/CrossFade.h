// The fade from one picture to the other. Engine thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

class CrossFade final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, double position, Frame& out) const override;
};

}  // namespace korvia

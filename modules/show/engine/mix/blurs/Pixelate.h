// The picture turns to blocks. Engine thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

/// Averages blocks of the fade that double up to the middle and halve again; between two sizes, the smaller
/// of which fill the larger, one fades into the other.
class Pixelate final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia

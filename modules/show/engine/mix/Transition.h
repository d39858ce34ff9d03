// A transition mixes two pictures into one. Its objects are immutable and live as long as the program; what
// they keep from frame to frame lies in the scratch. Engine thread.
#pragma once
#include <cstdint>

#include "engine/frame/Frame.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

/// How far a take is, and the seed of its random numbers.
struct MixPoint {
  /// 0 (all `from`) to 1 (all `to`), both included.
  double position = 0;
  /// Fixed at the start of the take: the same position with the same seed gives the same picture.
  std::uint32_t seed = 0;
};

class Transition {
 public:
  virtual ~Transition() = default;
  /// The mix at `point`. Positions come in any order, since the lever moves both ways. At 0 the mix is
  /// `from` and at 1 it is `to`, to the bit, by the arithmetic of the transition itself, so that nothing
  /// jumps near the ends. All three frames have the same size, at least one pixel, and no alpha. Inputs may
  /// be read up to the last sample of their last row, not further.
  virtual void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                   Frame& out) const = 0;
};

}  // namespace korvia

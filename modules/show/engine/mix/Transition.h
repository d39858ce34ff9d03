// A transition makes one picture of two. Its objects are immutable and live as long as the program; what they
// need from one frame to the next lies in the scratch. Engine thread.
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
  /// The picture at `point`. Any order of positions: the lever moves both ways. At 0 the picture is `from`
  /// and at 1 `to`, to the bit, by the transition's own arithmetic, so that nothing jumps beside the ends.
  /// All three frames have the same size, of one pixel at least, and no alpha. Inputs may be read up to the
  /// last sample of their last row, no further.
  virtual void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                   Frame& out) const = 0;
};

}  // namespace korvia

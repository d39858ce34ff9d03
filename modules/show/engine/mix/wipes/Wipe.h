// A wipe shows the new picture under a mask. coverage() is the exact function of place and position; the
// masks that mix() computes row by row stay within one code value of it. Engine thread.
#pragma once
#include <algorithm>
#include <cmath>

#include "engine/mix/Transition.h"
#include "engine/mix/wipes/MaskedPlanes.h"

namespace korvia {

class Wipe : public Transition {
 public:
  /// The weight of `to` at a place, 0 to 1; it never falls as the position rises. Places are in luma samples
  /// from the top left corner: the centre of the first sample is at 0.5, 0.5, that of a chroma sample in the
  /// middle of its four.
  virtual double coverage(FrameSize size, const MixPoint& point, double x, double y) const = 0;
};

/// Width of a soft edge in luma samples: 1 % of the picture's width.
inline double featherOf(FrameSize size) {
  return std::max(1.0, size.width * 0.01);
}

/// Coverage at `place` of a soft edge that moves from 0 to `length`. At position 0 all of the edge is before
/// 0, at position 1 all of it is behind `length`.
inline double swept(double position, double place, double length, double feather) {
  return std::clamp((position * (length + feather) - place) / feather, 0.0, 1.0);
}

/// Added before a truncating conversion it rounds. Masks are never negative, and std::lround for each sample
/// is too slow.
inline constexpr float kRounding = 0.5F;

inline std::uint8_t maskOf(double coverage) {
  return static_cast<std::uint8_t>(coverage * 255 + kRounding);
}

}  // namespace korvia

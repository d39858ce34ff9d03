// A wipe uncovers the new picture under a mask. Its coverage is a function of place and position, which the
// rows of its masks follow within a code value. Engine thread.
#pragma once
#include <algorithm>
#include <cmath>

#include "engine/mix/Transition.h"
#include "engine/mix/wipes/MaskedPlanes.h"

namespace korvia {

class Wipe : public Transition {
 public:
  /// How much of `to` is seen at a place, 0 to 1; never less at a later position. Places are in luma samples
  /// from the picture's top left corner, so that the first sample's centre is at 0.5, 0.5 and a chroma
  /// sample's in the middle of its four.
  virtual double coverage(FrameSize size, const MixPoint& point, double x, double y) const = 0;
};

/// Width of a soft edge in luma samples: 1 % of the picture's width.
inline double featherOf(FrameSize size) {
  return std::max(1.0, size.width * 0.01);
}

/// Coverage at `place` when a soft edge runs from 0 to `length`. The edge lies wholly before 0 at the start
/// and wholly behind `length` at the end.
inline double swept(double position, double place, double length, double feather) {
  return std::clamp((position * (length + feather) - place) / feather, 0.0, 1.0);
}

/// Rounds what is cut off to an integer; masks are never negative, and a call to round each is too slow.
inline constexpr float kRounding = 0.5F;

inline std::uint8_t maskOf(double coverage) {
  return static_cast<std::uint8_t>(coverage * 255 + kRounding);
}

}  // namespace korvia

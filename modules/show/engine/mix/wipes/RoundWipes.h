// Wipes around the centre of the picture. Engine thread.
#pragma once
#include "engine/mix/wipes/Wipe.h"

namespace korvia {

/// A circle that opens from the centre.
class CircleWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const override;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Four spokes that turn clockwise from 12, 3, 6 and 9 o'clock, each up to the start of the next.
class WheelWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const override;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia

// Wipes around the picture's centre. Engine thread.
#pragma once
#include "engine/mix/wipes/Wipe.h"

namespace korvia {

/// A round hole that grows.
class CircleWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const override;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Spokes that turn clockwise from 12, 3, 6 and 9 o'clock, each as far as the next one's beginning.
class WheelWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const override;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia

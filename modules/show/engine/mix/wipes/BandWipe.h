// Wipes with edges parallel to the sides of the picture: bands, boxes, bars, slats. Engine thread.
#pragma once
#include "engine/mix/wipes/Wipe.h"

namespace korvia {

/// A place on one of the two axes of the picture.
struct BandPlace {
  double place = 0;
  /// Length of the axis; like the place in luma samples.
  double length = 0;
  double feather = 0;
  MixPoint point;
};

/// Coverage along one axis.
using Band = double (*)(const BandPlace& at);

double everywhere(const BandPlace& at);
/// One edge, from the left or the top.
double fromStart(const BandPlace& at);
double fromEnd(const BandPlace& at);
/// Two edges.
double fromMiddle(const BandPlace& at);
double fromBothEnds(const BandPlace& at);
/// Slats, each wiped from its start at the same time.
double inSlats(const BandPlace& at);
/// Bars that fade in one by one, in random order.
double inRandomBars(const BandPlace& at);

/// The coverage is the smaller one of those along both axes.
class BandWipe : public Wipe {
 public:
  BandWipe(Band across, Band down) : across_(across), down_(down) {}
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const override;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;

 private:
  Band across_;
  Band down_;
};

}  // namespace korvia

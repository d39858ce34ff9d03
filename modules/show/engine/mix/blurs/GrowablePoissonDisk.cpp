#include "Blurs.h"

#include <cmath>

#include "engine/mix/Curves.h"
#include "engine/mix/blurs/PoissonDisk.h"
#include "engine/mix/blurs/SmallPicture.h"

namespace korvia {

void GrowablePoissonDisk::mix(const Frame& from, const Frame& to, const MixPoint& point,
                              TransitionScratch& scratch, Frame& out) const {
  constexpr double kBetweenTaps = 0.2;
  const double radius = kLargestDisk * from.height() * smoothStep(triangleAt(point.position));
  const int weight = hiddenFadeWeight(point.position);
  Frame& small = smallFade(from, to, weight, scratch);
  Frame& filled = scratch.frame(kSpareFrame, small.size());
  // The taps are so far apart that a fine pattern would show. A small disk first fills the gaps between
  // them.
  blurByDisk(small, kBetweenTaps * radius / kShrink, scratch, filled);
  blurByDisk(filled, radius / kShrink, scratch, small);
  const int strength = static_cast<int>(std::lround(255 * smoothStep(2 * radius / kHidingSmear)));
  drawSoftened(from, to, weight, small, strength, scratch, out);
}

}  // namespace korvia

#include "Blurs.h"

#include "engine/mix/Curves.h"
#include "engine/mix/blurs/Smear.h"

namespace korvia {

void RadialBlur::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                     Frame& out) const {
  constexpr double kLargestGrowth = 0.35;
  const double growth = kLargestGrowth * smoothStep(triangleAt(point.position));
  mixSmeared(from, to, hiddenFadeWeight(point.position), {0, growth}, growth, scratch, out);
}

}  // namespace korvia

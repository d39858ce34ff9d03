#include "Blurs.h"

#include "engine/mix/Curves.h"
#include "engine/mix/blurs/Smear.h"

namespace korvia {

void CircularBlur::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                       Frame& out) const {
  constexpr double kLargestTurn = 0.4;
  const double turn = kLargestTurn * smoothStep(triangleAt(point.position));
  mixSmeared(from, to, hiddenFadeWeight(point.position), {turn, 0}, turn, scratch, out);
}

}  // namespace korvia

#include "Distortions.h"

#include <algorithm>

#include "engine/mix/Curves.h"
#include "engine/mix/distortions/LevelGrid.h"

namespace korvia {

void MagnifySmooth::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                        Frame& out) const {
  constexpr double kMagnified = 0.8;
  constexpr double kFirstLens = 0.3;
  constexpr double kSoftness = 0.35;
  // The lens magnifies the mix: the second picture opens in its centre.
  DisplacementGrid grid(out.size(), scratch);
  LevelGrid levels(out.size(), grid.nodes().cellBits, scratch);
  levels.openCircle(point.position, kSoftness);
  Frame& mixed = scratch.frame(0, out.size());
  levels.mix(from, to, mixed);

  const double magnified = kMagnified * swellAt(point.position);
  const double lens = grid.nodes().reach() * (kFirstLens + (1 - kFirstLens) * point.position);
  grid.fillAround([&](double distance) -> RadialFactors {
    const double inside = std::max(1 - distance * distance / (lens * lens), 0.0);
    return {-magnified * inside * inside, 0};
  });
  grid.bend(mixed, out);
}

}  // namespace korvia

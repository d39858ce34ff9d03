#include "Distortions.h"

#include <algorithm>

#include "engine/mix/distortions/LevelGrid.h"

namespace korvia {

void CircleStretch::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                        Frame& out) const {
  constexpr double kSqueeze = 1.6;
  constexpr double kSoftness = 0.03;
  // The stretch continues a little outside the rim, where the mask is soft.
  constexpr double kOutermost = 1.4;
  DisplacementGrid grid(out.size(), scratch);
  const NodeGrid& nodes = grid.nodes();
  const double rim = std::max(point.position * nodes.reach(), 1.0);
  // At the rim the squeeze is limited to the samples that the picture has on that side.
  const auto squeezed = [&](double side) {
    return std::max(std::min(kSqueeze * (1 - point.position), side / rim - 1), 0.0);
  };
  const double squeezedX = squeezed(nodes.size.width / 2.0);
  const double squeezedY = squeezed(nodes.size.height / 2.0);
  grid.fill([&](int column, int row, std::size_t) -> Displacement {
    const double x = column - nodes.centerX();
    const double y = row - nodes.centerY();
    const double outwards = std::min((x * x + y * y) / (rim * rim), kOutermost);
    return {x * outwards * squeezedX, y * outwards * squeezedY};
  });
  Frame& stretched = scratch.frame(0, out.size());
  grid.bend(to, stretched);
  LevelGrid levels(out.size(), nodes.cellBits, scratch);
  levels.openCircle(point.position, kSoftness);
  levels.mix(from, stretched, out);
}

}  // namespace korvia

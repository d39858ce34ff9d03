#include "Distortions.h"

#include "engine/mix/distortions/Noise.h"

namespace korvia {

void RadialWiggle::fillField(const NodeGrid& nodes, std::uint32_t seed, Displacement* field) const {
  constexpr int kRays = 48;
  constexpr double kStretch = 0.3;
  const DirectionNoise rays(seed, kRays);
  nodes.forEach([&](int column, int row, std::size_t node) {
    const double stretch = kStretch * (2 * rays.linearAt(nodes.turnAt(column, row)) - 1);
    field[node] = {(column - nodes.centerX()) * stretch, (row - nodes.centerY()) * stretch};
  });
}

}  // namespace korvia

#include "Distortions.h"

#include <cmath>

#include "engine/mix/Curves.h"
#include "engine/mix/fades/CrossFade.h"

namespace korvia {

namespace {

/// Fades fastest where the picture is bent most.
int fadeWeightAt(double position) {
  return static_cast<int>(std::lround(smoothStep(position) * 256));
}

}  // namespace

void BentFade::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                   Frame& out) const {
  // Both pictures have the same displacement, so mixing them first means bending only one.
  Frame& mixed = scratch.frame(0, out.size());
  crossFade(from, to, fadeWeightAt(point.position), mixed);
  DisplacementGrid grid(out.size(), scratch);
  bend(point, swellAt(point.position), scratch, grid);
  grid.bend(mixed, out);
}

void RisingFade::bend(const MixPoint& point, double swell, TransitionScratch& scratch,
                      DisplacementGrid& grid) const {
  const NodeGrid& nodes = grid.nodes();
  const auto* field =
      scratch.table<Displacement>(this, nodes.size, point.seed, nodes.count(),
                                  [&](Displacement* table) { fillField(nodes, point.seed, table); });
  grid.fill([&](int, int, std::size_t node) -> Displacement {
    return {swell * field[node].x, swell * field[node].y};
  });
}

}  // namespace korvia

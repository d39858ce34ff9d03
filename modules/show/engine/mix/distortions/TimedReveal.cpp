#include "Distortions.h"

#include "engine/mix/distortions/LevelGrid.h"

namespace korvia {

void TimedReveal::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                      Frame& out) const {
  LevelGrid levels(out.size(), cellBits_, scratch);
  const NodeGrid& nodes = levels.nodes();
  const float* arrivals = scratch.table<float>(this, out.size(), point.seed, nodes.count(),
                                               [&](float* table) { fillArrivals(nodes, point.seed, table); });
  levels.open(point.position, softness_, [&](int, int, std::size_t node) { return arrivals[node]; });
  levels.mix(from, to, out);
}

}  // namespace korvia

#include "Distortions.h"

#include <algorithm>

#include "engine/mix/distortions/Noise.h"

namespace korvia {

RandomCircleReveal::RandomCircleReveal() : TimedReveal(3, 0.05) {}

void RandomCircleReveal::fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const {
  const DirectionNoise coarse(seed, 7);
  const DirectionNoise middle(seed, 17);
  const DirectionNoise fine(seed, 47);
  const auto rimAt = [&](double turn) {
    return 0.58 + 0.44 * coarse.smoothAt(turn) + 0.26 * middle.smoothAt(turn) + 0.14 * fine.smoothAt(turn);
  };
  float latest = 0;
  nodes.forEach([&](int x, int y, std::size_t node) {
    arrivals[node] = static_cast<float>(nodes.fromCenter(x, y) / rimAt(nodes.turnAt(x, y)));
    latest = std::max(latest, arrivals[node]);
  });
  nodes.forEach([&](int, int, std::size_t node) { arrivals[node] /= latest; });
}

}  // namespace korvia

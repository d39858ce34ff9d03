#include "Distortions.h"

#include <cmath>

#include "engine/mix/SeededRandom.h"

namespace korvia {

GrainDissolve::GrainDissolve() : TimedReveal(2, 0.3) {}

void GrainDissolve::fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const {
  nodes.forEach([&](int x, int y, std::size_t node) {
    // The first and last arrivals are more frequent than those between, because interpolation between the
    // nodes adds more of the latter.
    const double random = 2 * seededRandom(seed, x, y) - 1;
    arrivals[node] = static_cast<float>((1 + std::copysign(std::sqrt(std::abs(random)), random)) / 2);
  });
}

}  // namespace korvia

#include "Distortions.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace korvia {

namespace {

constexpr double kPi = std::numbers::pi;

}  // namespace

void Ripple::bend(const MixPoint& point, double swell, TransitionScratch& /*scratch*/,
                  DisplacementGrid& grid) const {
  constexpr double kLength = 0.17;
  constexpr double kHeight = 0.027;
  constexpr double kWaves = 3;
  const double length = kLength * grid.nodes().reach();
  const double height = kHeight * grid.nodes().reach() * swell;
  grid.fillAround([&](double distance) -> RadialFactors {
    // The waves get weaker towards the centre, where all directions meet.
    return {height * std::sin(2 * kPi * (distance / length - kWaves * point.position)) /
                std::max(distance, length / 2),
            0};
  });
}

}  // namespace korvia

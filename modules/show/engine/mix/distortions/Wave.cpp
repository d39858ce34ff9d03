#include "Distortions.h"

#include <cmath>
#include <numbers>

namespace korvia {

namespace {

constexpr double kPi = std::numbers::pi;

}  // namespace

void Wave::bend(const MixPoint& point, double swell, TransitionScratch& /*scratch*/,
                DisplacementGrid& grid) const {
  constexpr double kLength = 0.32;
  constexpr double kSway = 0.05;
  constexpr double kWaves = 2;
  const double length = kLength * grid.nodes().size.height;
  const double sway = kSway * grid.nodes().size.width * swell;
  grid.fill([&](int, int row, std::size_t) -> Displacement {
    return {sway * std::sin(2 * kPi * (row / length - kWaves * point.position)), 0};
  });
}

}  // namespace korvia

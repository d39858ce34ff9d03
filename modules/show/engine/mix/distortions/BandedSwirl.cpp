#include "Distortions.h"

#include <cmath>
#include <numbers>

namespace korvia {

namespace {

constexpr double kPi = std::numbers::pi;

}  // namespace

void BandedSwirl::bend(const MixPoint& /*point*/, double swell, TransitionScratch& /*scratch*/,
                       DisplacementGrid& grid) const {
  constexpr double kBands = 5;
  constexpr double kAngle = 1.2;
  // The larger, the softer the transition from one band to the next.
  constexpr double kSoftness = 0.2;
  const double reach = grid.nodes().reach();
  grid.fillAround([&](double distance) -> RadialFactors {
    const double band = std::sin(kPi * kBands * distance / reach);
    const double angle = swell * kAngle * band / std::sqrt(band * band + kSoftness);
    return {std::cos(angle) - 1, std::sin(angle)};
  });
}

}  // namespace korvia

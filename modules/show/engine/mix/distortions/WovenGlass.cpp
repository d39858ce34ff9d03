#include "Distortions.h"

#include <cmath>
#include <numbers>

namespace korvia {

namespace {

constexpr double kPi = std::numbers::pi;

}  // namespace

void WovenGlass::fillField(const NodeGrid& nodes, std::uint32_t /*seed*/, Displacement* field) const {
  constexpr double kStrand = 0.1;
  constexpr double kDepth = 0.03;
  const double strand = kStrand * nodes.reach();
  const double depth = kDepth * nodes.reach();
  nodes.forEach([&](int column, int row, std::size_t node) {
    // Vertical and horizontal strands lie on top alternately. Each refracts like a rod of glass, and less
    // towards its ends, where it passes under the next one.
    const double x = column / strand;
    const double y = row / strand;
    if ((static_cast<int>(x) + static_cast<int>(y)) % 2 == 0)
      field[node] = {depth * std::sin(2 * kPi * x) * std::abs(std::sin(kPi * y)), 0};
    else
      field[node] = {0, depth * std::sin(2 * kPi * y) * std::abs(std::sin(kPi * x))};
  });
}

}  // namespace korvia

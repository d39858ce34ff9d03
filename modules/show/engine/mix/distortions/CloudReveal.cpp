#include "Distortions.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/mix/distortions/Noise.h"

namespace korvia {

CloudReveal::CloudReveal() : TimedReveal(3, 0.2) {}

void CloudReveal::fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const {
  constexpr double kCloudSize = 0.45;
  const double size = kCloudSize * nodes.reach();
  CloudNoise clouds(seed);
  // Most values of the noise lie near its mean. Replacing each by its rank spreads the arrivals evenly over
  // the take.
  constexpr std::size_t kBins = 1024;
  std::array<int, kBins + 1> before{};
  const auto binOf = [](float noise) { return static_cast<std::size_t>(noise * kBins); };
  nodes.forEach([&](int x, int y, std::size_t node) {
    arrivals[node] = static_cast<float>(std::min(clouds.at(x / size, y / size), 0.999));
    ++before[binOf(arrivals[node]) + 1];
  });
  for (std::size_t bin = 0; bin < kBins; ++bin)
    before[bin + 1] += before[bin];
  const auto all = static_cast<float>(before[kBins]);
  nodes.forEach([&](int, int, std::size_t node) {
    const std::size_t bin = binOf(arrivals[node]);
    const float inBin = arrivals[node] * kBins - static_cast<float>(bin);
    arrivals[node] =
        std::lerp(static_cast<float>(before[bin]), static_cast<float>(before[bin + 1]), inBin) / all;
  });
}

}  // namespace korvia

#include "Distortions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "engine/mix/CrossFade.h"
#include "engine/mix/LevelGrid.h"
#include "engine/mix/Noise.h"

namespace korvia {

namespace {

constexpr double kPi = 3.14159265358979323846;

/// Exactly 0 at both ends and 1 in the middle.
double swellAt(double position) {
  return 4 * position * (1 - position);
}

/// Fades fastest where the picture is bent most.
int fadeWeightAt(double position) {
  const double eased = position * position * (3 - 2 * position);
  return std::clamp(static_cast<int>(std::lround(eased * 256)), 0, 256);
}

/// How many times around the centre (x, y) is, 0 to 1.
double turnOf(double x, double y) {
  return std::atan2(y, x) / (2 * kPi) + 0.5;
}

/// Chance for each of `count` directions around the centre, mixed between them by `ease`.
template <typename Ease>
double chanceAround(std::uint32_t seed, int count, double turn, Ease&& ease) {
  const double place = turn * count;
  const double before = std::floor(place);
  const int direction = static_cast<int>(before);
  return std::lerp(chanceAt(seed, direction % count, count), chanceAt(seed, (direction + 1) % count, count),
                   ease(place - before));
}

}  // namespace

void BentFade::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                   Frame& out) const {
  // Both pictures share the displacement, so that they can be mixed before they are bent.
  Frame& mixed = scratch.frame(0, out.size(), out.hasAlpha());
  crossFade(from, to, fadeWeightAt(point.position), mixed);
  DisplacementGrid grid(out.size(), scratch);
  bend(point, swellAt(point.position), scratch, grid);
  grid.bend(mixed, out);
}

void BandedSwirl::bend(const MixPoint& /*point*/, double swell, TransitionScratch& /*scratch*/,
                       DisplacementGrid& grid) const {
  constexpr double kBands = 5;
  constexpr double kAngle = 1.2;
  // The larger, the softer the passage from one band to the next.
  constexpr double kSoftness = 0.1;
  const NodeGrid& nodes = grid.nodes();
  const double reach = nodes.reach();
  grid.fill([&](int column, int row, std::size_t) -> Displacement {
    const double x = column - nodes.centerX();
    const double y = row - nodes.centerY();
    const double band = std::sin(kPi * kBands * std::sqrt(x * x + y * y) / reach);
    const double angle = swell * kAngle * band / std::sqrt(band * band + kSoftness);
    const double turned = std::cos(angle) - 1;
    const double across = std::sin(angle);
    return {x * turned - y * across, x * across + y * turned};
  });
}

void Crumble::bend(const MixPoint& point, double swell, TransitionScratch& scratch,
                   DisplacementGrid& grid) const {
  constexpr double kPieceSize = 0.055;
  constexpr double kThrow = 0.11;
  constexpr double kTurn = 0.9;
  const NodeGrid& nodes = grid.nodes();
  const double reach = nodes.reach();
  const auto fill = [&](Displacement* table) {
    const double size = std::max(kPieceSize * reach, 1.0);
    nodes.forEach([&](int column, int row, std::size_t node) {
      // The piece is that of the nearest of the centres that lie by chance, one in each square.
      const int squareX = static_cast<int>(column / size);
      const int squareY = static_cast<int>(row / size);
      double nearest = std::numeric_limits<double>::max();
      double offsetX = 0;
      double offsetY = 0;
      int pieceX = 0;
      int pieceY = 0;
      for (int y = squareY - 1; y <= squareY + 1; ++y)
        for (int x = squareX - 1; x <= squareX + 1; ++x) {
          const double toX = column - (x + chanceAt(point.seed, x, y)) * size;
          const double toY = row - (y + chanceAt(point.seed + 1, x, y)) * size;
          const double distance = toX * toX + toY * toY;
          if (distance < nearest) {
            nearest = distance;
            offsetX = toX;
            offsetY = toY;
            pieceX = x;
            pieceY = y;
          }
        }
      const double heading = 2 * kPi * chanceAt(point.seed + 2, pieceX, pieceY);
      const double far = kThrow * reach * chanceAt(point.seed + 3, pieceX, pieceY);
      const double turn = kTurn * (2 * chanceAt(point.seed + 4, pieceX, pieceY) - 1);
      table[node] = {far * std::cos(heading) - turn * offsetY, far * std::sin(heading) + turn * offsetX};
    });
  };
  const Displacement* pieces = scratch.table<Displacement>(this, nodes.size, point.seed, nodes.count(), fill);
  grid.fill([&](int, int, std::size_t node) -> Displacement {
    return {swell * pieces[node].x, swell * pieces[node].y};
  });
}

void RadialWiggle::bend(const MixPoint& point, double swell, TransitionScratch& scratch,
                        DisplacementGrid& grid) const {
  constexpr int kRays = 48;
  constexpr double kStretch = 0.3;
  const NodeGrid& nodes = grid.nodes();
  const auto fill = [&](float* table) {
    nodes.forEach([&](int column, int row, std::size_t node) {
      const double turn = turnOf(column - nodes.centerX(), row - nodes.centerY());
      table[node] = static_cast<float>(
          kStretch * (2 * chanceAround(point.seed, kRays, turn, [](double t) { return t; }) - 1));
    });
  };
  const float* stretch = scratch.table<float>(this, nodes.size, point.seed, nodes.count(), fill);
  grid.fill([&](int column, int row, std::size_t node) -> Displacement {
    const double factor = swell * static_cast<double>(stretch[node]);
    return {(column - nodes.centerX()) * factor, (row - nodes.centerY()) * factor};
  });
}

void Ripple::bend(const MixPoint& point, double swell, TransitionScratch& /*scratch*/,
                  DisplacementGrid& grid) const {
  constexpr double kLength = 0.11;
  constexpr double kHeight = 0.018;
  constexpr double kWaves = 3;
  const NodeGrid& nodes = grid.nodes();
  const double length = kLength * nodes.reach();
  const double height = kHeight * nodes.reach() * swell;
  grid.fill([&](int column, int row, std::size_t) -> Displacement {
    const double x = column - nodes.centerX();
    const double y = row - nodes.centerY();
    const double radius = std::sqrt(x * x + y * y);
    // Towards the centre, where all directions meet, the waves die down.
    const double wave = height * std::sin(2 * kPi * (radius / length - kWaves * point.position)) /
                        std::max(radius, length / 2);
    return {x * wave, y * wave};
  });
}

void Wave::bend(const MixPoint& point, double swell, TransitionScratch& /*scratch*/,
                DisplacementGrid& grid) const {
  constexpr double kLength = 0.32;
  constexpr double kSway = 0.05;
  constexpr double kWaves = 2;
  const NodeGrid& nodes = grid.nodes();
  const double length = kLength * nodes.size.height;
  const double sway = kSway * nodes.size.width * swell;
  grid.fill([&](int, int row, std::size_t) -> Displacement {
    return {sway * std::sin(2 * kPi * (row / length - kWaves * point.position)), 0};
  });
}

void WovenGlass::bend(const MixPoint& /*point*/, double swell, TransitionScratch& /*scratch*/,
                      DisplacementGrid& grid) const {
  constexpr double kStrand = 0.07;
  constexpr double kDepth = 0.024;
  const NodeGrid& nodes = grid.nodes();
  const double strand = kStrand * nodes.reach();
  const double depth = kDepth * nodes.reach() * swell;
  grid.fill([&](int column, int row, std::size_t) -> Displacement {
    // Strands that run down and strands that run across lie on top in turn. Each bends like a rod of glass,
    // less towards its ends, where it dives under the next one.
    const double x = column / strand;
    const double y = row / strand;
    const double alongX = std::sin(kPi * x);
    const double alongY = std::sin(kPi * y);
    const bool down = (static_cast<int>(x) + static_cast<int>(y)) % 2 == 0;
    if (down)
      return {depth * std::sin(2 * kPi * x) * std::abs(alongY), 0};
    return {0, depth * std::sin(2 * kPi * y) * std::abs(alongX)};
  });
}

void TimedReveal::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                      Frame& out) const {
  LevelGrid levels(out.size(), cellBits_, scratch);
  const NodeGrid& nodes = levels.nodes();
  const float* arrivals = scratch.table<float>(this, out.size(), point.seed, nodes.count(),
                                               [&](float* table) { fillArrivals(nodes, point.seed, table); });
  levels.open(point.position, softness_, [&](int, int, std::size_t node) { return arrivals[node]; });
  levels.mix(from, to, out);
}

CloudReveal::CloudReveal() : TimedReveal(3, 0.2) {}

void CloudReveal::fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const {
  constexpr double kCloudSize = 0.45;
  constexpr int kOctaves = 5;
  const double size = kCloudSize * nodes.reach();
  // The noise itself comes mostly near its mean; what arrives is spread evenly over the take.
  constexpr std::size_t kBins = 1024;
  std::array<int, kBins + 1> before{};
  const auto binOf = [](float noise) { return static_cast<std::size_t>(noise * kBins); };
  nodes.forEach([&](int x, int y, std::size_t node) {
    arrivals[node] = static_cast<float>(std::min(cloudsAt(seed, x / size, y / size, kOctaves), 0.999));
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

GrainDissolve::GrainDissolve() : TimedReveal(2, 0.3) {}

void GrainDissolve::fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const {
  nodes.forEach(
      [&](int x, int y, std::size_t node) { arrivals[node] = static_cast<float>(chanceAt(seed, x, y)); });
}

RandomCircleReveal::RandomCircleReveal() : TimedReveal(3, 0.05) {}

void RandomCircleReveal::fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const {
  struct Wobble {
    int directions;
    double strength;
  };
  constexpr std::array<Wobble, 3> kWobbles{{{7, 0.22}, {17, 0.13}, {47, 0.07}}};
  float latest = 0;
  nodes.forEach([&](int column, int row, std::size_t node) {
    const double x = column - nodes.centerX();
    const double y = row - nodes.centerY();
    double rim = 1;
    for (const Wobble& wobble : kWobbles)
      rim += wobble.strength * (2 * chanceAround(seed, wobble.directions, turnOf(x, y),
                                                 [](double t) { return t * t * (3 - 2 * t); }) -
                                1);
    arrivals[node] = static_cast<float>(std::sqrt(x * x + y * y) / rim);
    latest = std::max(latest, arrivals[node]);
  });
  nodes.forEach([&](int, int, std::size_t node) { arrivals[node] /= latest; });
}

void CircleStretch::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                        Frame& out) const {
  constexpr double kSqueeze = 1.6;
  constexpr double kSoftness = 0.03;
  // Just outside the rim, where the mask is soft, the stretch goes on.
  constexpr double kOutermost = 1.2;
  DisplacementGrid grid(out.size(), scratch);
  const NodeGrid& nodes = grid.nodes();
  const double squeeze = kSqueeze * (1 - point.position);
  const double rim = std::max(point.position * nodes.reach(), 1.0);
  grid.fill([&](int column, int row, std::size_t) -> Displacement {
    const double x = column - nodes.centerX();
    const double y = row - nodes.centerY();
    const double stretch = squeeze * std::min((x * x + y * y) / (rim * rim), kOutermost * kOutermost);
    return {x * stretch, y * stretch};
  });
  Frame& stretched = scratch.frame(0, out.size(), out.hasAlpha());
  grid.bend(to, stretched);

  LevelGrid levels(out.size(), nodes.cellBits, scratch);
  levels.open(point.position, kSoftness, [&](int column, int row, std::size_t) {
    return std::hypot(column - nodes.centerX(), row - nodes.centerY()) / nodes.reach();
  });
  levels.mix(from, stretched, out);
}

void MagnifySmooth::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                        Frame& out) const {
  constexpr double kMagnified = 0.8;
  constexpr double kFirstLens = 0.3;
  constexpr double kSoftness = 0.35;
  DisplacementGrid grid(out.size(), scratch);
  const NodeGrid& nodes = grid.nodes();
  // The second picture opens in the middle and lies under the lens with the first.
  LevelGrid levels(out.size(), nodes.cellBits, scratch);
  levels.open(point.position, kSoftness, [&](int column, int row, std::size_t) {
    return std::hypot(column - nodes.centerX(), row - nodes.centerY()) / nodes.reach();
  });
  Frame& mixed = scratch.frame(0, out.size(), out.hasAlpha());
  levels.mix(from, to, mixed);

  const double magnified = kMagnified * swellAt(point.position);
  const double lens = nodes.reach() * std::lerp(kFirstLens, 1.0, point.position);
  grid.fill([&](int column, int row, std::size_t) -> Displacement {
    const double x = column - nodes.centerX();
    const double y = row - nodes.centerY();
    const double inside = std::max(1 - (x * x + y * y) / (lens * lens), 0.0);
    const double inwards = -magnified * inside * inside;
    return {x * inwards, y * inwards};
  });
  grid.bend(mixed, out);
}

}  // namespace korvia

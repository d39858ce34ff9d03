#include "Distortions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "engine/mix/SeededRandom.h"
#include "engine/mix/SmoothStep.h"
#include "engine/mix/distortions/LevelGrid.h"
#include "engine/mix/distortions/Noise.h"
#include "engine/mix/fades/CrossFade.h"

namespace korvia {

namespace {

constexpr double kPi = std::numbers::pi;

/// Exactly 0 at both ends, from which it starts without a jerk, and 1 in the middle.
double swellAt(double position) {
  return smoothStep(4 * position * (1 - position));
}

/// Fades fastest where the picture is bent most.
int fadeWeightAt(double position) {
  return static_cast<int>(std::lround(smoothStep(position) * 256));
}

/// How many times around the centre a node is, 0 to 1.
double turnOf(const NodeGrid& nodes, int x, int y) {
  return std::atan2(y - nodes.centerY(), x - nodes.centerX()) / (2 * kPi) + 0.5;
}

/// The mask of a circle that opens from the centre.
void openCircle(double position, double softness, LevelGrid& levels) {
  const NodeGrid& nodes = levels.nodes();
  const double reach = nodes.reach();
  levels.open(position, softness, [&](int x, int y, std::size_t) { return nodes.fromCenter(x, y) / reach; });
}

}  // namespace

void BentFade::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                   Frame& out) const {
  // Both pictures share the displacement, so that they can be mixed before they are bent.
  Frame& mixed = scratch.frame(0, out.size());
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
  constexpr double kSoftness = 0.2;
  const double reach = grid.nodes().reach();
  grid.fillAround([&](double distance) -> RadialFactors {
    const double band = std::sin(kPi * kBands * distance / reach);
    const double angle = swell * kAngle * band / std::sqrt(band * band + kSoftness);
    return {std::cos(angle) - 1, std::sin(angle)};
  });
}

void Ripple::bend(const MixPoint& point, double swell, TransitionScratch& /*scratch*/,
                  DisplacementGrid& grid) const {
  constexpr double kLength = 0.17;
  constexpr double kHeight = 0.027;
  constexpr double kWaves = 3;
  const double length = kLength * grid.nodes().reach();
  const double height = kHeight * grid.nodes().reach() * swell;
  grid.fillAround([&](double distance) -> RadialFactors {
    // Towards the centre, where all directions meet, the waves die down.
    return {height * std::sin(2 * kPi * (distance / length - kWaves * point.position)) /
                std::max(distance, length / 2),
            0};
  });
}

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

void Crumble::fillField(const NodeGrid& nodes, std::uint32_t seed, Displacement* field) const {
  constexpr double kPieceSize = 0.055;
  constexpr double kThrow = 0.11;
  constexpr double kTurn = 0.9;
  struct Piece {
    double centerX;
    double centerY;
    Displacement thrown;
    double turn;
  };
  // A piece is all that is nearest to its centre (a Voronoi cell). There is one random centre in each square
  // of a grid that is a square larger than the picture on all sides.
  const double size = std::max(kPieceSize * nodes.reach(), 1.0);
  const int across = static_cast<int>((nodes.columns() - 1) * nodes.cell() / size) + 3;
  const int down = static_cast<int>((nodes.rows() - 1) * nodes.cell() / size) + 3;
  std::vector<Piece> pieces;
  pieces.reserve(static_cast<std::size_t>(across) * static_cast<std::size_t>(down));
  for (int y = 0; y < down; ++y)
    for (int x = 0; x < across; ++x) {
      const double heading = 2 * kPi * seededRandom(seed + 2, x, y);
      const double far = kThrow * nodes.reach() * seededRandom(seed + 3, x, y);
      pieces.push_back({(x - 1 + seededRandom(seed, x, y)) * size,
                        (y - 1 + seededRandom(seed + 1, x, y)) * size,
                        {far * std::cos(heading), far * std::sin(heading)},
                        kTurn * (2 * seededRandom(seed + 4, x, y) - 1)});
    }
  nodes.forEach([&](int column, int row, std::size_t node) {
    const int squareX = static_cast<int>(column / size) + 1;
    const int squareY = static_cast<int>(row / size) + 1;
    double nearest = std::numeric_limits<double>::max();
    for (int y = squareY - 1; y <= squareY + 1; ++y)
      for (int x = squareX - 1; x <= squareX + 1; ++x) {
        const Piece& piece = pieces[static_cast<std::size_t>(y) * static_cast<std::size_t>(across) +
                                    static_cast<std::size_t>(x)];
        const double offsetX = column - piece.centerX;
        const double offsetY = row - piece.centerY;
        const double distance = offsetX * offsetX + offsetY * offsetY;
        if (distance < nearest) {
          nearest = distance;
          field[node] = {piece.thrown.x - piece.turn * offsetY, piece.thrown.y + piece.turn * offsetX};
        }
      }
  });
}

void RadialWiggle::fillField(const NodeGrid& nodes, std::uint32_t seed, Displacement* field) const {
  constexpr int kRays = 48;
  constexpr double kStretch = 0.3;
  const DirectionNoise rays(seed, kRays);
  nodes.forEach([&](int column, int row, std::size_t node) {
    const double stretch = kStretch * (2 * rays.linearAt(turnOf(nodes, column, row)) - 1);
    field[node] = {(column - nodes.centerX()) * stretch, (row - nodes.centerY()) * stretch};
  });
}

void WovenGlass::fillField(const NodeGrid& nodes, std::uint32_t /*seed*/, Displacement* field) const {
  constexpr double kStrand = 0.1;
  constexpr double kDepth = 0.03;
  const double strand = kStrand * nodes.reach();
  const double depth = kDepth * nodes.reach();
  nodes.forEach([&](int column, int row, std::size_t node) {
    // Strands that run down and strands that run across lie on top in turn. Each bends like a rod of glass,
    // less towards its ends, where it dives under the next one.
    const double x = column / strand;
    const double y = row / strand;
    if ((static_cast<int>(x) + static_cast<int>(y)) % 2 == 0)
      field[node] = {depth * std::sin(2 * kPi * x) * std::abs(std::sin(kPi * y)), 0};
    else
      field[node] = {0, depth * std::sin(2 * kPi * y) * std::abs(std::sin(kPi * x))};
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
  const double size = kCloudSize * nodes.reach();
  CloudNoise clouds(seed);
  // The noise itself comes mostly near its mean; what arrives is spread evenly over the take.
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

GrainDissolve::GrainDissolve() : TimedReveal(2, 0.3) {}

void GrainDissolve::fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const {
  nodes.forEach([&](int x, int y, std::size_t node) {
    // More of the first and the last than of those between, which are there between the nodes anyhow.
    const double random = 2 * seededRandom(seed, x, y) - 1;
    arrivals[node] = static_cast<float>((1 + std::copysign(std::sqrt(std::abs(random)), random)) / 2);
  });
}

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
    arrivals[node] = static_cast<float>(nodes.fromCenter(x, y) / rimAt(turnOf(nodes, x, y)));
    latest = std::max(latest, arrivals[node]);
  });
  nodes.forEach([&](int, int, std::size_t node) { arrivals[node] /= latest; });
}

void CircleStretch::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                        Frame& out) const {
  constexpr double kSqueeze = 1.6;
  constexpr double kSoftness = 0.03;
  // Just outside the rim, where the mask is soft, the stretch goes on.
  constexpr double kOutermost = 1.4;
  DisplacementGrid grid(out.size(), scratch);
  const NodeGrid& nodes = grid.nodes();
  const double rim = std::max(point.position * nodes.reach(), 1.0);
  // At the rim, no more is squeezed in than the picture has on that side.
  const auto squeezed = [&](double side) {
    return std::max(std::min(kSqueeze * (1 - point.position), side / rim - 1), 0.0);
  };
  const double squeezedX = squeezed(nodes.size.width / 2.0);
  const double squeezedY = squeezed(nodes.size.height / 2.0);
  grid.fill([&](int column, int row, std::size_t) -> Displacement {
    const double x = column - nodes.centerX();
    const double y = row - nodes.centerY();
    const double outwards = std::min((x * x + y * y) / (rim * rim), kOutermost);
    return {x * outwards * squeezedX, y * outwards * squeezedY};
  });
  Frame& stretched = scratch.frame(0, out.size());
  grid.bend(to, stretched);
  LevelGrid levels(out.size(), nodes.cellBits, scratch);
  openCircle(point.position, kSoftness, levels);
  levels.mix(from, stretched, out);
}

void MagnifySmooth::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                        Frame& out) const {
  constexpr double kMagnified = 0.8;
  constexpr double kFirstLens = 0.3;
  constexpr double kSoftness = 0.35;
  // The second picture opens in the middle and lies under the lens with the first.
  DisplacementGrid grid(out.size(), scratch);
  LevelGrid levels(out.size(), grid.nodes().cellBits, scratch);
  openCircle(point.position, kSoftness, levels);
  Frame& mixed = scratch.frame(0, out.size());
  levels.mix(from, to, mixed);

  const double magnified = kMagnified * swellAt(point.position);
  const double lens = grid.nodes().reach() * (kFirstLens + (1 - kFirstLens) * point.position);
  grid.fillAround([&](double distance) -> RadialFactors {
    const double inside = std::max(1 - distance * distance / (lens * lens), 0.0);
    return {-magnified * inside * inside, 0};
  });
  grid.bend(mixed, out);
}

}  // namespace korvia

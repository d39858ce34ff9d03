#include "Distortions.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "engine/mix/SeededRandom.h"

namespace korvia {

namespace {

constexpr double kPi = std::numbers::pi;

}  // namespace

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

}  // namespace korvia

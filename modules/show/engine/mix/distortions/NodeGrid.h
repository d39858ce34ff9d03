// A grid of nodes, a few samples apart, at which a smooth field is computed exactly; between them it is
// interpolated linearly. The nodes begin at sample 0 and cover the whole picture. A plain value, any thread.
#pragma once
#include <cmath>
#include <cstddef>
#include <numbers>

#include "engine/frame/Frame.h"

namespace korvia {

struct NodeGrid {
  /// Values that a register may read past the last node of a row.
  static constexpr std::size_t kSpare = 16;

  FrameSize size;
  /// Nodes lie `1 << cellBits` samples of luma apart.
  int cellBits = 3;

  int cell() const { return 1 << cellBits; }
  int columns() const { return ((size.width - 1) >> cellBits) + 2; }
  int rows() const { return ((size.height - 1) >> cellBits) + 2; }
  /// Values from one row of nodes to the next.
  std::size_t stride() const { return static_cast<std::size_t>(columns()) + kSpare; }
  std::size_t count() const { return stride() * static_cast<std::size_t>(rows()); }

  double centerX() const { return (size.width - 1) / 2.0; }
  double centerY() const { return (size.height - 1) / 2.0; }
  double fromCenter(double x, double y) const {
    return std::sqrt((x - centerX()) * (x - centerX()) + (y - centerY()) * (y - centerY()));
  }
  /// Distance from the centre to the farthest node.
  double reach() const { return fromCenter((columns() - 1) * cell(), (rows() - 1) * cell()); }

  /// The direction from the centre as a part of a full turn, 0 to 1.
  double turnAt(double x, double y) const {
    return std::atan2(y - centerY(), x - centerX()) / (2 * std::numbers::pi) + 0.5;
  }

  /// Calls visit(x, y, node) for each node, with its coordinates in luma samples and the index of its value.
  template <typename Visit>
  void forEach(Visit&& visit) const {
    for (int row = 0; row < rows(); ++row)
      for (int column = 0; column < columns(); ++column)
        visit(column * cell(), row * cell(),
              static_cast<std::size_t>(row) * stride() + static_cast<std::size_t>(column));
  }
};

}  // namespace korvia

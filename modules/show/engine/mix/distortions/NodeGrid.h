// Where the values of a smooth field are computed exactly: at nodes a few samples apart, which reach from
// sample 0 over all of a picture. Between them, fields are linear. Plain values, any thread.
#pragma once
#include <cmath>
#include <cstddef>

#include "engine/frame/Frame.h"

namespace korvia {

struct NodeGrid {
  /// What vectors may read past the last node of a row.
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
  /// From the centre to the farthest node.
  double reach() const { return fromCenter((columns() - 1) * cell(), (rows() - 1) * cell()); }

  /// visit(x, y, node) for each node, with its place in samples of luma and the place of its value.
  template <typename Visit>
  void forEach(Visit&& visit) const {
    for (int row = 0; row < rows(); ++row)
      for (int column = 0; column < columns(); ++column)
        visit(column * cell(), row * cell(),
              static_cast<std::size_t>(row) * stride() + static_cast<std::size_t>(column));
  }
};

}  // namespace korvia

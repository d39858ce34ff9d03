// Soft borders between cells that lie side by side. Pure functions, any thread.
#pragma once
#include <algorithm>
#include <cmath>

namespace korvia {

/// A place in a line of cells.
struct CellJoin {
  int cell = 0;
  /// From 0 at the cell's beginning to 1 at its end.
  double along = 0;
  int neighbour = 0;
  /// Weight of the neighbour, of 256: 0 away from the border, 128 on it.
  int weight = 0;
};

/// `place` is 0 to `count`, in cells. `join` is the width of the soft borders in cells, at most 1.
inline CellJoin joinAt(double place, int count, double join) {
  CellJoin at;
  at.cell = std::clamp(static_cast<int>(place), 0, count - 1);
  at.along = std::clamp(place - at.cell, 0.0, 1.0);
  at.neighbour = at.along < 0.5 ? at.cell - 1 : at.cell + 1;
  if (at.neighbour < 0 || at.neighbour == count)
    return at;
  const double toBorder = at.along < 0.5 ? at.along : 1 - at.along;
  at.weight = std::max(0, static_cast<int>(std::lround((0.5 - toBorder / join) * 256)));
  return at;
}

/// The coverage at a place of cells whose own is `cell(index, along)`.
template <typename Cell>
double joined(double place, int count, double join, Cell cell) {
  const CellJoin at = joinAt(place, count, join);
  const double own = cell(at.cell, at.along);
  if (at.weight == 0)
    return own;
  const double next = cell(at.neighbour, at.neighbour < at.cell ? 1.0 : 0.0);
  return own + (next - own) * at.weight / 256;
}

}  // namespace korvia

// Bends a picture: each sample is read from a point of the picture that is a displacement away.
// Displacements are given at the nodes of a grid, interpolated linearly, and the same for all planes. Engine
// thread.
#pragma once
#include <cstdint>
#include <initializer_list>

#include "engine/mix/TransitionScratch.h"
#include "engine/mix/distortions/NodeGrid.h"

namespace korvia {

struct Displacement {
  /// In samples of luma.
  double x = 0;
  double y = 0;
};

/// A displacement in proportion to the place: a sample at (x, y) from the centre moves by (x * along - y *
/// across, y * along + x * across).
struct RadialFactors {
  double along = 0;
  double across = 0;
};

class DisplacementGrid {
 public:
  /// Uses buffers 0, 1 and 5 of the scratch.
  DisplacementGrid(FrameSize size, TransitionScratch& scratch);

  const NodeGrid& nodes() const { return nodes_; }

  /// Calls `displacementAt(x, y, node)` for each node. Points outside the picture are mirrored at its edges.
  template <typename Field>
  void fill(Field&& displacementAt) {
    nodes_.forEach([&](int x, int y, std::size_t node) {
      const Displacement displacement = displacementAt(x, y, node);
      x_[node] = fixed(displacement.x);
      y_[node] = fixed(displacement.y);
    });
  }

  /// Fills the grid with the same factors in all directions: `factorsAt(distance)` for distances from the
  /// centre in luma samples.
  template <typename Profile>
  void fillAround(Profile&& factorsAt) {
    for (std::size_t i = 0; i < profileCount(); ++i)
      profile_[i] = factorsAt(static_cast<double>(i));
    fill([&](int column, int row, std::size_t) -> Displacement {
      const double distance = nodes_.fromCenter(column, row);
      const auto inner = static_cast<std::size_t>(distance);
      const double beyond = distance - static_cast<double>(inner);
      const RadialFactors& a = profile_[inner];
      const RadialFactors& b = profile_[inner + 1];
      const double along = a.along + (b.along - a.along) * beyond;
      const double across = a.across + (b.across - a.across) * beyond;
      const double x = column - nodes_.centerX();
      const double y = row - nodes_.centerY();
      return {x * along - y * across, y * along + x * across};
    });
  }

  /// A displacement of zero leaves the sample as it is, to the bit.
  void bend(const Frame& in, Frame& out) const;

 private:
  static std::int32_t fixed(double samples);
  std::size_t profileCount() const { return static_cast<std::size_t>(nodes_.reach()) + 2; }
  /// Planes of the same size and stride, whose coordinates are computed once.
  void bendPlanes(const Frame& in, std::initializer_list<int> planes, Frame& out) const;

  NodeGrid nodes_;
  std::int32_t* x_;
  std::int32_t* y_;
  RadialFactors* profile_;
};

}  // namespace korvia

// Bends a picture: each sample is taken from a place of the picture that is a displacement away.
// Displacements are known at the nodes of a grid and linear between them, for all planes the same. Engine
// thread.
#pragma once
#include <cstdint>

#include "engine/mix/NodeGrid.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

struct Displacement {
  /// In samples of luma.
  double x = 0;
  double y = 0;
};

class DisplacementGrid {
 public:
  /// Keeps its displacements in buffers 0 and 1 of the scratch.
  DisplacementGrid(FrameSize size, TransitionScratch& scratch);

  const NodeGrid& nodes() const { return nodes_; }

  /// `displacementAt(x, y, node)` for each node. Places outside the picture are mirrored at its edges.
  template <typename Field>
  void fill(Field&& displacementAt) {
    nodes_.forEach([&](int x, int y, std::size_t node) {
      const Displacement displacement = displacementAt(x, y, node);
      x_[node] = fixed(displacement.x);
      y_[node] = fixed(displacement.y);
    });
  }

  /// A displacement of zero leaves the sample as it is, to the bit.
  void bend(const Frame& in, Frame& out) const;

 private:
  static std::int32_t fixed(double samples);

  NodeGrid nodes_;
  std::int32_t* x_;
  std::int32_t* y_;
};

}  // namespace korvia

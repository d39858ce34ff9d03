// Mixes two pictures by a mask that is given at the nodes of a grid and interpolated linearly. Engine
// thread.
#pragma once
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "engine/kernels/NodeKernels.h"
#include "engine/mix/TransitionScratch.h"
#include "engine/mix/distortions/NodeGrid.h"

namespace korvia {

class LevelGrid {
 public:
  /// Uses buffers 2, 3 and 4 of the scratch. `cellBits` is 2 or 3.
  LevelGrid(FrameSize size, int cellBits, TransitionScratch& scratch);

  const NodeGrid& nodes() const { return nodes_; }

  /// Opens the mask up to `position`: `to` begins to appear at a node when position * (1 + softness) passes
  /// `arrivalAt(x, y, node)`, 0 to 1, and is complete after another `softness`. The mask is closed
  /// everywhere at position 0 and open at 1.
  template <typename Arrival>
  void open(double position, double softness, Arrival&& arrivalAt) {
    const double front = position * (1 + softness);
    const double slope = 255 / softness;
    nodes_.forEach([&](int x, int y, std::size_t node) {
      const double level = (front - arrivalAt(x, y, node)) * slope;
      levels_[node] = static_cast<std::int16_t>(std::lrint(std::clamp(level, -kLimit, kLimit)));
    });
  }

  /// Opens the mask in a circle that grows from the centre to the farthest node.
  void openCircle(double position, double softness);

  void mix(const Frame& from, const Frame& to, Frame& out) const;

 private:
  static constexpr double kLimit = LevelRow::kMax;

  NodeGrid nodes_;
  std::int16_t* levels_;
  std::uint8_t* mask_;
  std::uint8_t* chromaMask_;
};

}  // namespace korvia

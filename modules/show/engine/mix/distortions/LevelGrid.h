// Mixes two pictures by a mask whose levels are known at the nodes of a grid and linear between them. Engine
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
  /// Keeps its levels and rows in buffers 2, 3 and 4 of the scratch. `cellBits` is 2 or 3.
  LevelGrid(FrameSize size, int cellBits, TransitionScratch& scratch);

  const NodeGrid& nodes() const { return nodes_; }

  /// Opens the mask as far as `position`: `arrivalAt(x, y, node)`, 0 to 1, says when `to` begins to come
  /// there, and it has come when another `softness` of the way to 1 + softness has passed. At position 0 the
  /// mask is closed everywhere and at 1 open.
  template <typename Arrival>
  void open(double position, double softness, Arrival&& arrivalAt) {
    const double front = position * (1 + softness);
    const double slope = 255 / softness;
    nodes_.forEach([&](int x, int y, std::size_t node) {
      const double level = (front - arrivalAt(x, y, node)) * slope;
      levels_[node] = static_cast<std::int16_t>(std::lrint(std::clamp(level, -kLimit, kLimit)));
    });
  }

  void mix(const Frame& from, const Frame& to, Frame& out) const;

 private:
  static constexpr double kLimit = LevelRow::kMax;

  NodeGrid nodes_;
  std::int16_t* levels_;
  std::uint8_t* mask_;
  std::uint8_t* chromaMask_;
};

}  // namespace korvia

#include "LevelGrid.h"

#include "engine/frame/PlaneView.h"
#include "engine/kernels/RowKernels.h"

namespace korvia {

LevelGrid::LevelGrid(FrameSize size, int cellBits, TransitionScratch& scratch)
    : nodes_{size, cellBits},
      levels_(scratch.buffer<std::int16_t>(2, nodes_.count())),
      mask_(scratch.buffer<std::uint8_t>(
          3, static_cast<std::size_t>(nodes_.columns()) * static_cast<std::size_t>(nodes_.cell()))),
      chromaMask_(scratch.buffer<std::uint8_t>(4, static_cast<std::size_t>(size.chromaWidth()))) {}

void LevelGrid::openCircle(double position, double softness) {
  const double reach = nodes_.reach();
  open(position, softness, [&](int x, int y, std::size_t) { return nodes_.fromCenter(x, y) / reach; });
}

void LevelGrid::mix(const Frame& from, const Frame& to, Frame& out) const {
  const auto mixRowOf = [&](int plane, int y, const std::uint8_t* mask) {
    const WritablePlane mixed = writablePlaneOf(out, plane);
    mixMaskedRow(planeOf(from, plane).row(y), planeOf(to, plane).row(y), mask, mixed.row(y), mixed.width);
  };
  for (int y = 0; y < out.height(); ++y) {
    LevelRow levels;
    levels.upper = levels_ + static_cast<std::size_t>(y >> nodes_.cellBits) * nodes_.stride();
    levels.lower = levels.upper + nodes_.stride();
    levels.cellBits = nodes_.cellBits;
    levels.down = y & (nodes_.cell() - 1);
    maskFromNodes(levels, mask_, out.width());
    mixRowOf(Frame::Y, y, mask_);
    if (y % 2 == 0) {
      everySecond(mask_, chromaMask_, out.planeWidth(Frame::U));
      mixRowOf(Frame::U, y / 2, chromaMask_);
      mixRowOf(Frame::V, y / 2, chromaMask_);
    }
  }
}

}  // namespace korvia

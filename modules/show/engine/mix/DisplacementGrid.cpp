#include "DisplacementGrid.h"

#include <algorithm>
#include <cmath>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/SampleKernels.h"

namespace korvia {

namespace {

// Farther than any picture is wide, and not so far that the kernel's sums overflow.
constexpr double kFarthest = 1 << 15;

}  // namespace

DisplacementGrid::DisplacementGrid(FrameSize size, TransitionScratch& scratch)
    : nodes_{size},
      x_(scratch.buffer<std::int32_t>(0, nodes_.count())),
      y_(scratch.buffer<std::int32_t>(1, nodes_.count())) {}

std::int32_t DisplacementGrid::fixed(double samples) {
  return static_cast<std::int32_t>(std::lrint(std::clamp(samples, -kFarthest, kFarthest) * kSampleOne));
}

void DisplacementGrid::bend(const Frame& in, Frame& out) const {
  for (int plane = 0; plane < planeCount(out); ++plane) {
    const PlaneView source = planeOf(in, plane);
    const WritablePlane target = writablePlaneOf(out, plane);
    // Chroma has half the samples to a cell, each of twice the width.
    const int halved = plane == Frame::U || plane == Frame::V ? 1 : 0;
    BentRow bent;
    bent.cellBits = nodes_.cellBits - halved;
    bent.fractionBits = kSampleFractionBits + halved;
    for (int y = 0; y < target.height; ++y) {
      const std::size_t upper = static_cast<std::size_t>(y >> bent.cellBits) * nodes_.stride();
      const std::size_t lower = upper + nodes_.stride();
      bent.upperX = x_ + upper;
      bent.upperY = y_ + upper;
      bent.lowerX = x_ + lower;
      bent.lowerY = y_ + lower;
      bent.down = y & ((1 << bent.cellBits) - 1);
      sampleBentRow(source, y, bent, target.row(y), target.width);
    }
  }
}

}  // namespace korvia

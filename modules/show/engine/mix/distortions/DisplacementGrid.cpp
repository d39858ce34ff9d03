#include "DisplacementGrid.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/SampleKernels.h"

namespace korvia {

namespace {

// Farther than any picture is wide, and not so far that the kernel's sums overflow.
constexpr double kFarthest = 1 << 15;
constexpr int kNone = -1;

}  // namespace

DisplacementGrid::DisplacementGrid(FrameSize size, TransitionScratch& scratch)
    : nodes_{size},
      x_(scratch.buffer<std::int32_t>(0, nodes_.count())),
      y_(scratch.buffer<std::int32_t>(1, nodes_.count())),
      profile_(scratch.buffer<RadialFactors>(5, profileCount())) {}

std::int32_t DisplacementGrid::fixed(double samples) {
  return static_cast<std::int32_t>(std::lrint(std::clamp(samples, -kFarthest, kFarthest) * kSampleOne));
}

void DisplacementGrid::bend(const Frame& in, Frame& out) const {
  bendPlanes(in, Frame::U, Frame::V, out);
  bendPlanes(in, Frame::Y, out.hasAlpha() ? Frame::A : kNone, out);
}

void DisplacementGrid::bendPlanes(const Frame& in, int first, int second, Frame& out) const {
  // Only planes of the same layout share their places.
  const bool both = second != kNone && in.stride(first) == in.stride(second);
  // Chroma has half the samples to a cell, each of twice the width.
  const int halved = first == Frame::U || first == Frame::V ? 1 : 0;
  BentRow bent;
  bent.cellBits = nodes_.cellBits - halved;
  bent.fractionBits = kSampleFractionBits + halved;
  for (int y = 0; y < out.planeHeight(first); ++y) {
    const std::size_t upper = static_cast<std::size_t>(y >> bent.cellBits) * nodes_.stride();
    const std::size_t lower = upper + nodes_.stride();
    bent.upperX = x_ + upper;
    bent.upperY = y_ + upper;
    bent.lowerX = x_ + lower;
    bent.lowerY = y_ + lower;
    bent.down = y & ((1 << bent.cellBits) - 1);
    std::array<BentTarget, 2> targets;
    targets[0] = {planeOf(in, first), writablePlaneOf(out, first).row(y)};
    if (both)
      targets[1] = {planeOf(in, second), writablePlaneOf(out, second).row(y)};
    sampleBentRow(targets.data(), both ? 2 : 1, y, bent, out.planeWidth(first));
  }
  if (second != kNone && !both)
    bendPlanes(in, second, kNone, out);
}

}  // namespace korvia

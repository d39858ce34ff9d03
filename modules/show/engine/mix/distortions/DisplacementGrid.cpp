#include "DisplacementGrid.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/SampleKernels.h"

namespace korvia {

namespace {

// Larger than any picture, and small enough for the sums of the kernel not to overflow.
constexpr double kFarthest = 1 << 15;

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
  if (in.stride(Frame::U) == in.stride(Frame::V)) {
    bendPlanes(in, {Frame::U, Frame::V}, out);
  } else {
    bendPlanes(in, {Frame::U}, out);
    bendPlanes(in, {Frame::V}, out);
  }
  bendPlanes(in, {Frame::Y}, out);
}

void DisplacementGrid::bendPlanes(const Frame& in, std::initializer_list<int> planes, Frame& out) const {
  const int first = *planes.begin();
  // Chroma has half as many samples in a cell, each of twice the width.
  const int halved = stepOf(first) - 1;
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
    int count = 0;
    for (const int plane : planes)
      targets[static_cast<std::size_t>(count++)] = {planeOf(in, plane), writablePlaneOf(out, plane).row(y)};
    sampleBentRow(targets.data(), count, y, bent, out.planeWidth(first));
  }
}

}  // namespace korvia

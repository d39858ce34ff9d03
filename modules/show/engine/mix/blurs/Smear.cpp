#include "Smear.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/kernels/BlurKernels.h"
#include "engine/kernels/SampleKernels.h"
#include "engine/mix/Curves.h"

namespace korvia {

namespace {

constexpr int kFractionBits = 16;
constexpr int kDownBits = kFractionBits - kSampleFractionBits;
// Points that are handed to the sampler at a time.
constexpr int kBlock = 512;
// Each pass averages three taps, three times as far apart as in the pass before: 81 taps in all. The number
// of passes is even, so that the last one writes where the first one read.
constexpr int kPasses = 4;
constexpr double kTaps = 81;

std::int64_t fixed(double value) {
  return std::llround(value * (1 << kFractionBits));
}

/// Coordinates of points on a line for the sampler. Within a block the fractions fit into 32 bits, which is
/// much faster than 64.
void fillLine(std::int64_t start, std::int64_t step, std::int32_t* out, int count) {
  const auto whole = static_cast<std::int32_t>(start >> kDownBits);
  auto rest = static_cast<std::int32_t>(start & ((1 << kDownBits) - 1));
  const auto shortStep = static_cast<std::int32_t>(step);
  for (int i = 0; i < count; ++i) {
    out[i] = whole + (rest >> kDownBits);
    rest += shortStep;
  }
}

MovedPlane movedSmall(const Frame& picture, int plane, FrameSize size, Movement movement) {
  return {planeOf(picture, plane), centreOf(size, kShrink * stepOf(plane)), movement};
}

}  // namespace

MovedPlane::MovedPlane(const PlaneView& plane, PlanePoint centre, Movement movement) : plane_(plane) {
  const double across = std::exp(-movement.growth) * std::cos(movement.turn);
  const double along = -std::exp(-movement.growth) * std::sin(movement.turn);
  stepX_ = fixed(across);
  stepY_ = fixed(along);
  originX_ = fixed(centre.x - centre.x * across + centre.y * along);
  originY_ = fixed(centre.y - centre.x * along - centre.y * across);
}

void MovedPlane::row(int y, int begin, int count, std::uint8_t* out) const {
  constexpr std::int64_t kRound = 1 << (kDownBits - 1);
  std::array<std::int32_t, kBlock> x;
  std::array<std::int32_t, kBlock> line;
  for (int done = 0; done < count; done += kBlock) {
    const int size = std::min(kBlock, count - done);
    const std::int64_t atX = originX_ + (begin + done) * stepX_ - y * stepY_ + kRound;
    const std::int64_t atY = originY_ + (begin + done) * stepY_ + y * stepX_ + kRound;
    fillLine(atX, stepX_, x.data(), size);
    fillLine(atY, stepY_, line.data(), size);
    sampleRow(plane_, x.data(), line.data(), out + done, size);
  }
}

void moveSmall(const Frame& picture, FrameSize size, Movement movement, Frame& out) {
  for (const int plane : kOpaquePlanes) {
    const MovedPlane moved = movedSmall(picture, plane, size, movement);
    const WritablePlane target = writablePlaneOf(out, plane);
    for (int y = 0; y < target.height; ++y)
      moved.row(y, 0, target.width, target.row(y));
  }
}

void smearSmall(Frame& picture, FrameSize size, Movement movement, TransitionScratch& scratch) {
  auto* back = scratch.buffer<std::uint8_t>(0, static_cast<std::size_t>(picture.width()));
  auto* onwards = scratch.buffer<std::uint8_t>(1, static_cast<std::size_t>(picture.width()));
  Movement step{movement.turn / kTaps, movement.growth / kTaps};
  Frame* in = &picture;
  Frame* out = &scratch.frame(1, picture.size());
  for (int pass = 0; pass < kPasses; ++pass) {
    for (const int plane : kOpaquePlanes) {
      const PlaneView source = planeOf(*in, plane);
      const MovedPlane before = movedSmall(*in, plane, size, {-step.turn, -step.growth});
      const MovedPlane after = movedSmall(*in, plane, size, step);
      const WritablePlane target = writablePlaneOf(*out, plane);
      for (int y = 0; y < target.height; ++y) {
        before.row(y, 0, target.width, back);
        after.row(y, 0, target.width, onwards);
        averageOfThreeRow(back, source.row(y), onwards, target.row(y), target.width);
      }
    }
    step = {step.turn * 3, step.growth * 3};
    std::swap(in, out);
  }
}

void mixSmeared(const Frame& from, const Frame& to, int weight, Movement movement, double pace,
                TransitionScratch& scratch, Frame& out) {
  Frame& small = smallFade(from, to, weight, scratch);
  smearSmall(small, from.size(), movement, scratch);
  const Frame& mask = roundMask(from.size(), scratch,
                                [&](double distance) { return smoothStep(distance * pace / kHidingSmear); });
  drawSoftened(from, to, weight, small, mask, scratch, out);
}

}  // namespace korvia

// Pictures at a quarter of the size, in which blurs are cheap, and how they are enlarged again. Engine
// thread.
#pragma once
#include <algorithm>
#include <cmath>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/BlurKernels.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

/// Frames of the scratch for small pictures. smearSmall() works in kSpareFrame.
enum SmallFrame { kSmallFrame, kSpareFrame, kMaskFrame, kOtherFrame };

/// Buffers of the scratch that a blur may use; the functions of small pictures use those below.
enum BlurBuffer { kRowBuffer = 3, kOtherRowBuffer = 4 };

/// A smear of at least this many luma samples hides that the picture was enlarged.
inline constexpr double kHidingSmear = 10;

/// A point of a plane, in samples: a sample lies at its integer coordinates.
struct PlanePoint {
  double x = 0;
  double y = 0;
};

/// The centre of a picture in a plane whose samples are `step` luma samples apart.
PlanePoint centreOf(FrameSize size, int step);

FrameSize smallSizeOf(FrameSize size);

/// Writes the fade, with `weight` of `to` 0 to 256, into a frame of the small size; each sample is the mean
/// of 4 x 4.
void shrinkFade(const Frame& from, const Frame& to, int weight, Frame& small);

/// The same into the scratch's kSmallFrame.
Frame& smallFade(const Frame& from, const Frame& to, int weight, TransitionScratch& scratch);

/// Enlarges a small plane, bilinear: row `y` of the full size.
void enlargedRow(const PlaneView& small, int y, std::uint8_t* out, int width);

/// Columns from `begin` up to, not including, `end`; empty where both are equal.
struct ColumnSpan {
  int begin = 0;
  int end = 0;
};

/// The columns outside of which the enlarged row `y`, `width` samples long, is 255.
ColumnSpan spanBelowFull(const PlaneView& small, int y, int width);

/// Draws the fade mixed with the enlarged small picture: `strength` 0 gives the fade, 255 the small picture.
/// Uses buffers 0 and 1 of the scratch.
void drawSoftened(const Frame& from, const Frame& to, int weight, const Frame& small, int strength,
                  TransitionScratch& scratch, Frame& out);

/// The same with a mask of the small size in place of one strength. Its plane Y is for luma and its plane U
/// for chroma.
void drawSoftened(const Frame& from, const Frame& to, int weight, const Frame& small, const Frame& mask,
                  TransitionScratch& scratch, Frame& out);

/// A mask of the small size whose strength, 0 to 1, is a function of the distance from the centre of the
/// full picture in luma samples. The mask is kMaskFrame of the scratch; its buffer 0 is used.
template <typename Strength>
Frame& roundMask(FrameSize size, TransitionScratch& scratch, Strength strength) {
  Frame& mask = scratch.frame(kMaskFrame, smallSizeOf(size));
  const auto reach = static_cast<std::size_t>(std::hypot(size.width, size.height) / 2) + 2 * kShrink + 1;
  auto* strengths = scratch.buffer<std::uint8_t>(0, reach);
  for (std::size_t i = 0; i < reach; ++i)
    strengths[i] = static_cast<std::uint8_t>(std::lround(255 * strength(static_cast<double>(i))));
  for (const int plane : {Frame::Y, Frame::U}) {
    const int step = kShrink * stepOf(plane);
    const PlanePoint centre = centreOf(size, step);
    const WritablePlane target = writablePlaneOf(mask, plane);
    for (int y = 0; y < target.height; ++y) {
      const auto down = static_cast<float>((y - centre.y) * step);
      std::uint8_t* row = target.row(y);
      for (int x = 0; x < target.width; ++x) {
        const auto across = static_cast<float>((x - centre.x) * step);
        const auto distance = static_cast<std::size_t>(std::sqrt(across * across + down * down));
        row[x] = strengths[std::min(distance, reach - 1)];
      }
    }
  }
  return mask;
}

/// The mask's plane for a plane of the picture.
inline int maskPlaneOf(int plane) {
  return stepOf(plane) == 1 ? Frame::Y : Frame::U;
}

}  // namespace korvia

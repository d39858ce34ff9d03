// A fade at a quarter of its size, cheap to blur, and the way to show it in full size again. Engine thread.
#pragma once
#include "engine/frame/PlaneView.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

/// A point of a plane in its samples; a sample lies at its whole number.
struct PlanePoint {
  double x = 0;
  double y = 0;
};

/// The middle of a picture of that size in a plane whose samples are `step` luma samples apart.
PlanePoint centreOf(FrameSize size, int step);

FrameSize smallSizeOf(FrameSize size);

/// The fade, `weight` of `to` 0 to 256, into a frame of the small size; each sample is the mean of 4 x 4.
void shrinkFade(const Frame& from, const Frame& to, int weight, Frame& small);

/// Row `y` of a plane of full size out of that plane's small one, bilinear.
void enlargedRow(const PlaneView& small, int y, std::uint8_t* out, int width);

/// Columns from `begin` to before `end`; none where they meet.
struct ColumnSpan {
  int begin = 0;
  int end = 0;
};

/// Outside these columns row `y` of full size, `width` samples long, is 255.
ColumnSpan spanBelowFull(const PlaneView& small, int y, int width);

/// The fade with the small picture laid over it, 0 (none) to 255 (all) strong everywhere. Uses the scratch's
/// buffers 0 and 1.
void drawSoftened(const Frame& from, const Frame& to, int weight, const Frame& small, int strength,
                  TransitionScratch& scratch, Frame& out);

/// The same with a strength for each place: a mask of the small size, whose plane Y is for luma and U for
/// chroma.
void drawSoftened(const Frame& from, const Frame& to, int weight, const Frame& small, const Frame& mask,
                  TransitionScratch& scratch, Frame& out);

/// The mask's plane for a plane of the picture.
inline int maskPlaneOf(int plane) {
  return stepOf(plane) == 1 ? Frame::Y : Frame::U;
}

}  // namespace korvia

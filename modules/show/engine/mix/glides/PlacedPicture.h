// Pictures that are moved and shrunk by parts of a sample, one over another. Engine thread.
#pragma once
#include "engine/frame/Frame.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

/// Where a picture lies in the frame, in steps of a luma sample: coarse enough for chroma to follow in whole
/// steps, too fine to be seen.
struct Placement {
  static constexpr int kSteps = 128;  ///< to the luma sample

  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// The whole frame. An odd one is a sample wider or higher than its luma, so that its chroma samples are
/// whole and luma and chroma move and shrink alike; the luma of that sample is that of its neighbour.
Placement wholeFrame(FrameSize size);

/// Draws `front` at its place over `behind` at its own. Each sample of `out` is the mean of what lies under
/// it, so that edges between two samples are blended; pictures at whole samples and in their own size are
/// copied. Both are at most as large as the frame, and `front` covers what `behind` leaves free: it may leave
/// the frame where `behind` does, at whole rows or columns or along a common edge.
void placePictures(const Frame& front, const Placement& frontPlace, const Frame& behind,
                   const Placement& behindPlace, TransitionScratch& scratch, Frame& out);

}  // namespace korvia

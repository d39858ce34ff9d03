// Draws one picture over another, both moved and shrunk with sub-sample precision. Engine thread.
#pragma once
#include "engine/frame/Frame.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

/// The place of a picture in the frame, in fractions of a luma sample. The steps are coarse enough for
/// chroma to move by whole steps, and too fine to be seen.
struct Placement {
  static constexpr int kSteps = 128;  ///< to the luma sample

  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// The whole frame. An odd size is rounded up to whole chroma samples, so that luma and chroma move and
/// shrink alike; the additional luma sample repeats its neighbour.
Placement wholeFrame(FrameSize size);

/// Draws `front` at its place over `behind` at its own. Each sample of `out` is the mean of what it covers,
/// so edges between two samples are antialiased; pictures at whole samples and in their own size are copied.
/// Both are at most as large as the frame, and `front` covers what `behind` leaves free: it may leave the
/// frame where `behind` does, at whole rows or columns or along a common edge.
void placePictures(const Frame& front, const Placement& frontPlace, const Frame& behind,
                   const Placement& behindPlace, TransitionScratch& scratch, Frame& out);

}  // namespace korvia

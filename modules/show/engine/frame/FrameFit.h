// Letterboxes and pillarboxes pictures of any size into the render format: scaled with the aspect ratio
// kept, centred, black around. Pure functions, any thread.
#pragma once
#include "Frame.h"

namespace korvia {

struct FrameRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  friend bool operator==(const FrameRect& a, const FrameRect& b) {
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
  }
};

/// The rectangle of a picture inside `target`. The pixel aspect is the width of a pixel divided by its
/// height, as a ratio. Position and size are even, so that chroma samples stay whole; never empty.
FrameRect fitRect(FrameSize picture, int pixelAspectNumerator, int pixelAspectDenominator, FrameSize target);

/// Scales `picture` into the rectangle of `target` and fills the rest with black. The alpha plane of the
/// target, if any, becomes that of the picture, opaque when it has none, and is transparent outside.
void fitFrame(const Frame& picture, const FrameRect& rect, Frame& target);

}  // namespace korvia

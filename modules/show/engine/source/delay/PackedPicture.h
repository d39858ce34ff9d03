// Pictures as bytes without gaps: the planes Y, U and V one after the other, in full or in half size. Alpha
// is left out, so a picture lies on black. Pure functions, any thread.
#pragma once
#include <cstdint>

#include "DelayPlan.h"

namespace korvia {

std::int64_t packedBytes(FrameSize size, DelayPlan::PictureScale scale);
/// `bytes` has room for packedBytes().
void packPicture(const Frame& picture, DelayPlan::PictureScale scale, std::uint8_t* bytes);
/// Fills the frame, which has the size that the packed picture had before.
void unpackPicture(const std::uint8_t* bytes, DelayPlan::PictureScale scale, Frame& frame);

}  // namespace korvia

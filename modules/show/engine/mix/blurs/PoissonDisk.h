// A disk of taps, no two of them close together: what a lens out of focus makes of a point. Engine thread.
#pragma once
#include <array>

#include "engine/mix/blurs/SmallPicture.h"

namespace korvia {

/// Half of the disk's taps, within the unit circle; the other half lies opposite, so that the blur moves
/// nothing.
const std::array<PlanePoint, 32>& poissonHalfDisk();

/// Radius of the largest disk, as a part of the picture's height.
inline constexpr double kLargestDisk = 0.05;

/// Blurs a small picture by a disk of `radius` samples of its luma; 0 gives the picture. Uses the scratch's
/// buffer 2, as much of it as the largest disk needs.
void blurByDisk(const Frame& picture, double radius, TransitionScratch& scratch, Frame& out);

}  // namespace korvia

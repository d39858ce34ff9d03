// A blur by a Poisson disk: taps in a circle with a minimum distance between them, like a lens out of focus.
// Engine thread.
#pragma once
#include <array>

#include "engine/mix/blurs/SmallPicture.h"

namespace korvia {

/// Half of the disk's taps, within the unit circle. The other half is their point reflection, so that the
/// blur does not move the picture.
const std::array<PlanePoint, 32>& poissonHalfDisk();

/// Radius of the largest disk, as a part of the picture's height.
inline constexpr double kLargestDisk = 0.05;

/// Blurs a small picture by a disk of `radius` samples of its luma; 0 gives the picture. Uses the scratch's
/// buffer 2, as much of it as the largest disk needs.
void blurByDisk(const Frame& picture, double radius, TransitionScratch& scratch, Frame& out);

}  // namespace korvia

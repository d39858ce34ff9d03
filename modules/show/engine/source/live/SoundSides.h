// What the operator does with the two sides of a device's sound. Pure function, any thread.
#pragma once
#include "engine/audio/StereoSpan.h"

namespace korvia {

/// As stored in the field audioProcessFilter.
enum class SoundSides { AsTheyAre = 0, LeftOnBoth = 1, RightOnBoth = 2, Swapped = 3 };

/// A number that is none of them leaves the sound as it is.
SoundSides soundSidesOf(int filter);

void applySides(SoundSides sides, StereoSpan sound);

}  // namespace korvia

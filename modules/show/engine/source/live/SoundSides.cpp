#include "SoundSides.h"

#include <algorithm>

namespace korvia {

SoundSides soundSidesOf(int filter) {
  const bool isKnown = filter >= 0 && filter <= static_cast<int>(SoundSides::Swapped);
  return isKnown ? static_cast<SoundSides>(filter) : SoundSides::AsTheyAre;
}

void applySides(SoundSides sides, StereoSpan sound) {
  switch (sides) {
    case SoundSides::AsTheyAre:
      break;
    case SoundSides::LeftOnBoth:
      std::copy_n(sound.left, sound.samples, sound.right);
      break;
    case SoundSides::RightOnBoth:
      std::copy_n(sound.right, sound.samples, sound.left);
      break;
    case SoundSides::Swapped:
      std::swap_ranges(sound.left, sound.left + sound.samples, sound.right);
      break;
  }
}

}  // namespace korvia

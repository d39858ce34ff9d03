// Number of an effect to the transition that draws it. Any thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

inline constexpr int kEffectNone = 0;
inline constexpr int kEffectFade = 22;
/// Effects are numbered below this.
inline constexpr int kEffectCount = 80;

/// The transition of an effect number, of static life; null for a cut, which is also what a number without a
/// transition is.
const Transition* transitionFor(int effect);

}  // namespace korvia

// Finds the transition of an effect number. Any thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

inline constexpr int kEffectNone = 0;
inline constexpr int kEffectFade = 22;
/// Effects are numbered below this.
inline constexpr int kEffectCount = 80;

/// The transition of an effect number, with static lifetime; null for a cut and for numbers without a
/// transition.
const Transition* transitionFor(int effect);

}  // namespace korvia

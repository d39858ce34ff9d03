// Number of an effect to the transition that draws it. Any thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

inline constexpr int kEffectNone = 0;
inline constexpr int kEffectFade = 22;

/// The transition of an effect number, of static life; null for a cut. Numbers without a transition of their
/// own cross-fade.
const Transition* transitionFor(int effect);

}  // namespace korvia

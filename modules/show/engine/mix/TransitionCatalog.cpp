#include "TransitionCatalog.h"

#include "CrossFade.h"

namespace korvia {

const Transition* transitionFor(int effect) {
  static const CrossFade crossFade;
  return effect == kEffectNone ? nullptr : &crossFade;
}

}  // namespace korvia

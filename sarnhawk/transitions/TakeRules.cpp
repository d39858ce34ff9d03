#include "transitions/TakeRules.h"

#include <cstdlib>

#include "console/tagKorviaTakeButton.h"

namespace {

constexpr int kRandomRange = 80;

}  // namespace

qint32 TakeRules::effectToSend(const tagKorviaTakeButton& slot, qint64 secondsSinceEpoch) {
  if (slot.effect != tagKorviaTakeButton::kRandomEffect)
    return slot.effect;
  std::srand(static_cast<unsigned>(secondsSinceEpoch));
  return std::rand() % kRandomRange;
}

#include "RefillTurns.h"

#include <algorithm>
#include <thread>

namespace korvia {

RefillTurns::RefillTurns()
    : RefillTurns(std::max(1, static_cast<int>(std::thread::hardware_concurrency()) / 2)) {}

bool RefillTurns::take(Need need) {
  if (++taken_ <= turns_ || need == Need::Urgent)
    return true;
  --taken_;
  return false;
}

}  // namespace korvia

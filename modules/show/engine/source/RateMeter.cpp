#include "RateMeter.h"

#include <utility>

namespace korvia {

namespace {

constexpr std::chrono::milliseconds kWindow{1000};
constexpr std::chrono::milliseconds kSilence{1000};

float rate(int things, std::chrono::steady_clock::duration time) {
  const float seconds = std::chrono::duration<float>(time).count();
  return seconds > 0 ? static_cast<float>(things) / seconds : 0;
}

}  // namespace

void RateMeter::count(int arrivals, Time now) {
  MutexLock lock(mutex_);
  if (!std::exchange(begun_, true) || now - last_ > kSilence) {
    windowStart_ = now;
    inWindow_ = 0;
    lastWindow_ = 0;
  } else if (now - windowStart_ >= kWindow) {
    lastWindow_ = rate(inWindow_, now - windowStart_);
    windowStart_ = now;
    inWindow_ = 0;
  }
  inWindow_ += arrivals;
  last_ = now;
}

float RateMeter::perSecond(Time now) const {
  MutexLock lock(mutex_);
  if (!begun_ || now - last_ > kSilence)
    return 0;
  if (lastWindow_ > 0)
    return lastWindow_;
  // The first arrivals would give any rate, so the first window is counted as a whole second.
  return rate(inWindow_, kWindow);
}

}  // namespace korvia

#include "RateMeter.h"

namespace korvia {

namespace {

constexpr std::chrono::milliseconds kWindow{1000};
constexpr std::chrono::milliseconds kSilence{1000};

float rate(int things, std::chrono::steady_clock::duration time) {
  const float seconds = std::chrono::duration<float>(time).count();
  return seconds > 0 ? static_cast<float>(things) / seconds : 0;
}

}  // namespace

void RateMeter::count(Time now) {
  MutexLock lock(mutex_);
  if (total_ == 0 || now - last_ > kSilence) {
    windowStart_ = now;
    inWindow_ = 0;
    lastWindow_ = 0;
  } else if (now - windowStart_ >= kWindow) {
    lastWindow_ = rate(inWindow_, now - windowStart_);
    windowStart_ = now;
    inWindow_ = 0;
  }
  ++inWindow_;
  ++total_;
  last_ = now;
}

float RateMeter::perSecond(Time now) const {
  MutexLock lock(mutex_);
  if (total_ == 0 || now - last_ > kSilence)
    return 0;
  if (lastWindow_ > 0)
    return lastWindow_;
  // A film begins with a burst of pictures, so the first window is counted as a whole second.
  return rate(inWindow_, kWindow);
}

std::int64_t RateMeter::total() const {
  MutexLock lock(mutex_);
  return total_;
}

}  // namespace korvia

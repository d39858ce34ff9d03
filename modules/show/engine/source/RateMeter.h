// Counts arrivals and computes their rate. Any thread.
#pragma once
#include <chrono>
#include <cstdint>

#include "ThreadSafety.h"

namespace korvia {

class RateMeter {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// `arrivals` have come at once.
  void count(int arrivals, Time now = std::chrono::steady_clock::now());
  /// Arrivals a second; exactly 0 when none came within the last second.
  float perSecond(Time now = std::chrono::steady_clock::now()) const;

 private:
  mutable Mutex mutex_;
  bool begun_ GUARDED_BY(mutex_) = false;
  int inWindow_ GUARDED_BY(mutex_) = 0;
  float lastWindow_ GUARDED_BY(mutex_) = 0;
  Time windowStart_ GUARDED_BY(mutex_);
  Time last_ GUARDED_BY(mutex_);
};

}  // namespace korvia

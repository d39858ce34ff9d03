// Counts arrivals and computes their rate. Any thread.
#pragma once
#include <chrono>
#include <cstdint>

#include "ThreadSafety.h"

namespace korvia {

class RateMeter {
 public:
  using Time = std::chrono::steady_clock::time_point;

  void count(Time now = std::chrono::steady_clock::now());
  /// Arrivals a second; exactly 0 when none came within the last second.
  float perSecond(Time now = std::chrono::steady_clock::now()) const;
  std::int64_t total() const;

 private:
  mutable Mutex mutex_;
  std::int64_t total_ GUARDED_BY(mutex_) = 0;
  int inWindow_ GUARDED_BY(mutex_) = 0;
  float lastWindow_ GUARDED_BY(mutex_) = 0;
  Time windowStart_ GUARDED_BY(mutex_);
  Time last_ GUARDED_BY(mutex_);
};

}  // namespace korvia

// Counts things that arrive and tells how many arrive a second. Any thread.
#pragma once
#include <chrono>
#include <cstdint>
#include <mutex>

namespace korvia {

class RateMeter {
 public:
  using Time = std::chrono::steady_clock::time_point;

  void count(Time now = std::chrono::steady_clock::now());
  /// A second; exactly 0 when nothing came within the last second.
  float perSecond(Time now = std::chrono::steady_clock::now()) const;
  std::int64_t total() const;

 private:
  mutable std::mutex mutex_;
  std::int64_t total_ = 0;  // guarded by mutex_
  int inWindow_ = 0;        // guarded by mutex_
  float lastWindow_ = 0;    // guarded by mutex_
  Time windowStart_;        // guarded by mutex_
  Time last_;               // guarded by mutex_
};

}  // namespace korvia

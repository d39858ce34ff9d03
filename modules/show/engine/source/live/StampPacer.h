// Lets data pass at the pace of their time stamps, where an input delivers them as fast as they are taken:
// files on a server, segments of HLS. The input's threads call wait, at the same time for pictures and sound;
// any thread: close.
#pragma once
#include <cstdint>
#include <optional>

#include "ThreadSafety.h"

namespace korvia {

class StampPacer {
 public:
  enum class Result {
    Due,
    /// It is due too, but it came so late, or its stamp jumped so far, that the time of all that follows is
    /// another.
    Anew,
    Closed
  };

  /// Waits until the data with this stamp are due; the first ones are due at once.
  Result wait(std::int64_t stampNs) EXCLUDES(mutex_);
  /// Ends all waits, for good.
  void close() EXCLUDES(mutex_);

 private:
  Mutex mutex_;
  ConditionVariable wake_;
  std::optional<std::int64_t> baseNs_ GUARDED_BY(mutex_);  // time at which the stamp 0 was due
  bool closed_ GUARDED_BY(mutex_) = false;
};

}  // namespace korvia

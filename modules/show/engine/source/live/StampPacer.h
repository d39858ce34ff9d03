// Lets data pass at the pace of their time stamps, where an input delivers them as fast as they are taken:
// files on a server, segments of HLS. What waits before it is coded, so data are held back here instead of
// waiting decoded. The input's threads call wait, at the same time for pictures and sound; any thread: close.
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

  struct Paced {
    Result result = Result::Due;
    /// How long the data were held back after their time.
    std::int64_t heldNs = 0;
  };

  /// `holdNs` is how long data are held back after their time, as heldBackNs() says.
  explicit StampPacer(std::int64_t holdNs = 0) : holdNs_(holdNs) {}

  /// Waits until the data with this stamp are due; the first ones are due at once.
  Paced wait(std::int64_t stampNs) EXCLUDES(mutex_);
  /// Ends all waits, for good.
  void close() EXCLUDES(mutex_);

 private:
  const std::int64_t holdNs_;
  Mutex mutex_;
  ConditionVariable wake_;
  // Time at which the stamp 0 was due without hold, and the first stamp that came by it.
  std::optional<std::int64_t> baseNs_ GUARDED_BY(mutex_);
  std::int64_t beginStampNs_ GUARDED_BY(mutex_) = 0;
  bool closed_ GUARDED_BY(mutex_) = false;
};

}  // namespace korvia

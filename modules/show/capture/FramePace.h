// Waits for the times at which pictures are taken: deadlines on the monotonic clock, so that the wait does
// not drift. One thread.
#pragma once
#include <cstdint>

namespace korvia {

class FramePace {
 public:
  /// Pictures a second, as a fraction.
  FramePace(std::int64_t numerator, std::int64_t denominator);

  /// Waits for the next deadline and returns it, in nanoseconds of the monotonic clock. Deadlines that have
  /// passed already are left out.
  std::int64_t wait();

 private:
  const std::int64_t numerator_;
  const std::int64_t denominator_;
  std::int64_t beginNs_ = 0;
  std::int64_t count_ = 0;
};

}  // namespace korvia

// Counts frames and computes frame rates over a window and since the start. Guarded by its owner.
#pragma once
#include <array>
#include <chrono>
#include <cstdint>

namespace korvia {

class FrameMeter {
 public:
  using Time = std::chrono::steady_clock::time_point;
  static constexpr int kWindowSeconds = 10;

  /// Forgets everything; the count begins now.
  void start(Time now);
  void count(int frames, Time now);

  std::int64_t total() const { return total_; }
  /// Over the last 10 whole seconds; since the start while fewer have passed.
  double perSecond(Time now) const;
  double perSecondOfRun(Time now) const;

 private:
  std::int64_t secondOf(Time now) const;

  Time start_;
  std::int64_t total_ = 0;
  // One entry more than the window, for the second that is not complete yet.
  std::array<std::int64_t, kWindowSeconds + 1> frames_{};
  std::int64_t newest_ = 0;  // second of the newest entry
};

}  // namespace korvia

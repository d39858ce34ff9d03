// Tells when the machine is short of computing time, so that work for pictures that nobody sees can be left
// out. It looks at the share of all cores that this process uses and, since others may use them too, at what
// did not get done in time. Engine thread; the figures come from the caller.
#pragma once
#include <chrono>
#include <cstdint>

namespace korvia {

class LoadWatch {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// Since any fixed time.
  struct Counts {
    double cpuSeconds = 0;
    std::int64_t lateTicks = 0;
    /// Pictures that open films did not have in time. The count falls when a film is closed.
    std::int64_t heldFrames = 0;
  };

  /// `cores` is the number of cores that the process may use, at least 1.
  explicit LoadWatch(int cores) : cores_(cores) {}

  /// Forgets everything; the machine is not short.
  void restart();
  /// Whether a second has passed since the last note().
  bool isDue(Time now) const { return now - last_ >= std::chrono::seconds(1); }
  void note(Time now, const Counts& counts);

  bool isShort() const { return short_; }
  /// The share of the cores in use between the last two notes, 0 to 1.
  double load() const { return load_; }

 private:
  int cores_;
  bool started_ = false;
  Time last_;
  Counts counts_;
  double load_ = 0;
  int busySeconds_ = 0;
  int calmSeconds_ = 0;
  bool short_ = false;
};

}  // namespace korvia

#include "LoadWatch.h"

#include <algorithm>

namespace korvia {

namespace {

// The gap between the two shares keeps what is saved from ending the shortage at once.
constexpr double kBusyShare = 0.9;
constexpr double kCalmShare = 0.65;
constexpr std::int64_t kManyLate = 3;
constexpr int kBusySeconds = 2;
constexpr int kCalmSeconds = 10;

}  // namespace

void LoadWatch::restart() {
  *this = LoadWatch(cores_);
}

void LoadWatch::note(Time now, const Counts& counts) {
  const double seconds = std::chrono::duration<double>(now - last_).count();
  const double used = counts.cpuSeconds - counts_.cpuSeconds;
  const std::int64_t late =
      std::max(counts.lateTicks - counts_.lateTicks, counts.heldFrames - counts_.heldFrames);
  last_ = now;
  counts_ = counts;
  if (!started_) {
    started_ = true;
    return;
  }
  load_ = std::clamp(used / (seconds * cores_), 0.0, 1.0);
  busySeconds_ = load_ >= kBusyShare || late >= kManyLate ? busySeconds_ + 1 : 0;
  calmSeconds_ = load_ < kCalmShare && late <= 0 ? calmSeconds_ + 1 : 0;
  if (busySeconds_ >= kBusySeconds)
    short_ = true;
  else if (calmSeconds_ >= kCalmSeconds)
    short_ = false;
}

}  // namespace korvia

#include "FrameMeter.h"

#include <algorithm>

namespace korvia {

namespace {

using Seconds = std::chrono::duration<double>;

}  // namespace

void FrameMeter::start(Time now) {
  *this = {};
  start_ = now;
}

std::int64_t FrameMeter::secondOf(Time now) const {
  return std::chrono::duration_cast<std::chrono::seconds>(now - start_).count();
}

void FrameMeter::count(int frames, Time now) {
  const std::int64_t second = secondOf(now);
  const auto places = static_cast<std::int64_t>(frames_.size());
  // Seconds without a frame count as 0.
  for (std::int64_t empty = std::max(newest_ + 1, second - places + 1); empty <= second; ++empty)
    frames_[static_cast<std::size_t>(empty % places)] = 0;
  newest_ = std::max(newest_, second);
  frames_[static_cast<std::size_t>(second % places)] += frames;
  total_ += frames;
}

double FrameMeter::perSecond(Time now) const {
  const std::int64_t second = secondOf(now);
  if (second < kWindowSeconds)
    return perSecondOfRun(now);
  const auto places = static_cast<std::int64_t>(frames_.size());
  std::int64_t sum = 0;
  for (std::int64_t past = second - kWindowSeconds; past < second; ++past) {
    if (past <= newest_ && past > newest_ - places)
      sum += frames_[static_cast<std::size_t>(past % places)];
  }
  return static_cast<double>(sum) / kWindowSeconds;
}

double FrameMeter::perSecondOfRun(Time now) const {
  const double seconds = Seconds(now - start_).count();
  return seconds > 0 ? static_cast<double>(total_) / seconds : 0;
}

}  // namespace korvia

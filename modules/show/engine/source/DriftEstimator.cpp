#include "DriftEstimator.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace korvia {

namespace {

// A window is long enough that some data arrive undelayed, and so short that drift hardly changes the transit
// in it.
constexpr std::int64_t kWindowNs = 4'000'000'000;
// A window that is further from the line than this begins another level when the next window confirms it.
constexpr std::int64_t kStepNs = 10'000'000;
constexpr double kMostDrift = 1e-3;
// The slope is used from this sum of squared distances in time on, in s^2. Eight windows reach it.
constexpr double kEnoughSpread = 600;

double seconds(std::int64_t ns) {
  return static_cast<double>(ns) * 1e-9;
}

}  // namespace

void DriftEstimator::add(std::int64_t transitNs, std::int64_t arrivalNs) {
  if (least_ && arrivalNs - windowStartNs_ >= kWindowNs) {
    addWindow(*least_);
    least_.reset();
  }
  if (!least_)
    windowStartNs_ = arrivalNs;
  if (!least_ || transitNs < least_->transitNs)
    least_ = Point{arrivalNs, transitNs, segment_};
  if (!isSettled()) {
    levelNs_ = least_->transitNs;
    levelTimeNs_ = least_->timeNs;
  }
}

void DriftEstimator::beginSegment() {
  ++segment_;
  least_.reset();
  deviator_.reset();
}

void DriftEstimator::addWindow(Point least) {
  const bool newSegment =
      count_ == 0 || points_[static_cast<std::size_t>((next_ + kWindows - 1) % kWindows)].segment != segment_;
  const std::int64_t deviationNs = least.transitNs - transitAt(least.timeNs);
  if (!newSegment && std::abs(deviationNs) > kStepNs) {
    const bool confirmed =
        deviator_ && (deviator_->transitNs > transitAt(deviator_->timeNs)) == (deviationNs > 0);
    if (!confirmed) {
      deviator_ = least;
      return;
    }
    deviator_->segment = least.segment = ++segment_;
    append(*deviator_);
  }
  deviator_.reset();
  append(least);
  fit();
}

void DriftEstimator::append(Point point) {
  points_[static_cast<std::size_t>(next_)] = point;
  next_ = (next_ + 1) % kWindows;
  count_ = std::min(count_ + 1, kWindows);
}

void DriftEstimator::fit() {
  double spread = 0;
  double product = 0;
  const int oldest = (next_ + kWindows - count_) % kWindows;
  const auto at = [&](int i) -> const Point& {
    return points_[static_cast<std::size_t>((oldest + i) % kWindows)];
  };
  for (int first = 0; first < count_;) {
    int last = first;
    double time = 0;
    double transit = 0;
    // Times are relative to the first point of the segment, because a double does not resolve nanoseconds of
    // the absolute time.
    const Point& origin = at(first);
    for (; last < count_ && at(last).segment == origin.segment; ++last) {
      time += seconds(at(last).timeNs - origin.timeNs);
      transit += seconds(at(last).transitNs - origin.transitNs);
    }
    time /= last - first;
    transit /= last - first;
    for (int i = first; i < last; ++i) {
      const double x = seconds(at(i).timeNs - origin.timeNs) - time;
      spread += x * x;
      product += x * (seconds(at(i).transitNs - origin.transitNs) - transit);
    }
    levelTimeNs_ = origin.timeNs + std::llround(time * 1e9);
    levelNs_ = origin.transitNs + std::llround(transit * 1e9);
    first = last;
  }
  if (spread >= kEnoughSpread)
    slope_ = std::clamp(product / spread, -kMostDrift, kMostDrift);
}

std::int64_t DriftEstimator::transitAt(std::int64_t timeNs) const {
  return levelNs_ + std::llround(slope_ * static_cast<double>(timeNs - levelTimeNs_));
}

double DriftEstimator::driftPpm() const {
  return -slope_ * 1e6;
}

}  // namespace korvia

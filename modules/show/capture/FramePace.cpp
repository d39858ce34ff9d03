#include "FramePace.h"

#include <cerrno>
#include <ctime>

namespace korvia {

namespace {

constexpr std::int64_t kSecondNs = 1'000'000'000;

std::int64_t nowNs() {
  timespec now = {};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * kSecondNs + now.tv_nsec;
}

}  // namespace

FramePace::FramePace(std::int64_t numerator, std::int64_t denominator)
    : numerator_(numerator), denominator_(denominator), beginNs_(nowNs()) {}

std::int64_t FramePace::wait() {
  const std::int64_t frameNs = kSecondNs * denominator_ / numerator_;
  const std::int64_t lateNs = nowNs() - (beginNs_ + count_ * frameNs);
  if (lateNs > frameNs)
    count_ += lateNs / frameNs;
  // The count begins anew each second of frames, so that the rounded duration adds up to no error.
  if (count_ >= numerator_) {
    beginNs_ += denominator_ * kSecondNs;
    count_ -= numerator_;
  }
  const std::int64_t deadlineNs = beginNs_ + count_ * frameNs;
  const timespec deadline = {static_cast<time_t>(deadlineNs / kSecondNs), deadlineNs % kSecondNs};
  while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR) {
  }
  ++count_;
  return deadlineNs;
}

}  // namespace korvia

#include "StampPacer.h"

#include <chrono>

#include "LiveConnection.h"

namespace korvia {

namespace {

// Data that come later than this have waited for the network, and what follows is shown as much later.
constexpr std::int64_t kLateNs = 250'000'000;
// Nothing is stamped so far ahead of the stream beside it.
constexpr std::int64_t kAheadNs = 10'000'000'000;

}  // namespace

StampPacer::Result StampPacer::wait(std::int64_t stampNs) {
  MutexLock lock(mutex_);
  const std::int64_t nowNs = LiveConnection::nowNs();
  if (!baseNs_)
    baseNs_ = nowNs - stampNs;
  const std::int64_t earlyNs = *baseNs_ + stampNs - nowNs;
  Result result = Result::Due;
  if (earlyNs < -kLateNs || earlyNs > kAheadNs) {
    baseNs_ = nowNs - stampNs;
    result = Result::Anew;
  } else if (earlyNs > 0) {
    wake_.wait_until(lock, std::chrono::steady_clock::now() + std::chrono::nanoseconds(earlyNs),
                     [this]() REQUIRES(mutex_) { return closed_; });
  }
  return closed_ ? Result::Closed : result;
}

void StampPacer::close() {
  {
    MutexLock lock(mutex_);
    closed_ = true;
  }
  wake_.notify_all();
}

}  // namespace korvia

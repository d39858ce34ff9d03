#include "StampPacer.h"

#include <chrono>

#include "LiveConnection.h"
#include "heldBack.h"

namespace korvia {

namespace {

// Data that come later than this have waited for the network, and what follows is shown as much later.
constexpr std::int64_t kLateNs = 250'000'000;
// Nothing is stamped so far ahead of the stream beside it.
constexpr std::int64_t kAheadNs = 10'000'000'000;

}  // namespace

StampPacer::Paced StampPacer::wait(std::int64_t stampNs) {
  MutexLock lock(mutex_);
  const std::int64_t nowNs = LiveConnection::nowNs();
  const auto begin = [&]() REQUIRES(mutex_) {
    baseNs_ = nowNs - stampNs;
    beginStampNs_ = stampNs;
  };
  if (!baseNs_)
    begin();
  Paced paced;
  paced.heldNs = heldBackNs(stampNs - beginStampNs_, holdNs_);
  const std::int64_t earlyNs = *baseNs_ + stampNs + paced.heldNs - nowNs;
  if (earlyNs < -kLateNs || earlyNs > kAheadNs + holdNs_) {
    begin();
    paced = {Result::Anew, 0};
  } else if (earlyNs > 0) {
    wake_.wait_until(lock, std::chrono::steady_clock::now() + std::chrono::nanoseconds(earlyNs),
                     [this]() REQUIRES(mutex_) { return closed_; });
  }
  if (closed_)
    paced.result = Result::Closed;
  return paced;
}

void StampPacer::close() {
  {
    MutexLock lock(mutex_);
    closed_ = true;
  }
  wake_.notify_all();
}

}  // namespace korvia

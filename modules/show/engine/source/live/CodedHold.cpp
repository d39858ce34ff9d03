#include "CodedHold.h"

#include <algorithm>
#include <chrono>

#include "LiveConnection.h"
#include "heldBack.h"

namespace korvia {

namespace {

// Decoded pictures wait for this time: they take up the delay of the decoder, which sorts the pictures of a
// stream with B-frames, and of a busy machine.
constexpr std::int64_t kDecodedNs = 300'000'000;
// More pictures are not in a decoder.
constexpr std::size_t kMostPassed = 256;

}  // namespace

CodedHold::CodedHold(std::int64_t latencyNs) : holdNs_(holdFor(latencyNs)) {}

std::int64_t CodedHold::holdFor(std::int64_t latencyNs) {
  return std::max<std::int64_t>(0, latencyNs - kDecodedNs);
}

void CodedHold::arrive(const Stamps& stamps, std::int64_t nowNs) {
  MutexLock lock(mutex_);
  waiting_.push_back({stamps, nowNs});
}

std::int64_t CodedHold::dueNs(const Waiting& data, std::optional<std::int64_t> shownNs) const {
  // The first picture is to be seen at once.
  if (!beginNs_ || !shownNs)
    return data.arrivalNs;
  // When the stamps have jumped, they say nothing until the first of them has been decoded.
  const std::int64_t mostNs = heldBackNs(data.arrivalNs - *beginNs_, holdNs_);
  return std::clamp(*shownNs - kDecodedNs, data.arrivalNs, data.arrivalNs + mostNs);
}

bool CodedHold::waitUntilDue(const Stamps& stamps, std::optional<std::int64_t> shownNs) {
  MutexLock lock(mutex_);
  // What was dropped on the way does not come here.
  while (!waiting_.empty() && !(waiting_.front().stamps == stamps))
    waiting_.pop_front();
  if (waiting_.empty())
    return !closed_;
  const Waiting data = waiting_.front();
  waiting_.pop_front();
  const std::int64_t due = dueNs(data, shownNs);
  const std::int64_t waitNs = due - LiveConnection::nowNs();
  if (waitNs > 0)
    wake_.wait_until(lock, std::chrono::steady_clock::now() + std::chrono::nanoseconds(waitNs),
                     [this]() REQUIRES(mutex_) { return closed_; });
  // A picture may come in many packets.
  if (!passed_.empty() && passed_.back().presentationNs == stamps.presentationNs)
    passed_.pop_back();
  passed_.push_back({stamps.presentationNs, due - data.arrivalNs});
  if (passed_.size() > kMostPassed)
    passed_.pop_front();
  return !closed_;
}

std::int64_t CodedHold::heldNs(std::int64_t presentationNs) {
  MutexLock lock(mutex_);
  if (!beginNs_)
    beginNs_ = LiveConnection::nowNs();
  const auto found = std::find_if(passed_.rbegin(), passed_.rend(), [presentationNs](const Passed& passed) {
    return passed.presentationNs == presentationNs;
  });
  // A decoder may make up stamps.
  if (found != passed_.rend())
    lastHeldNs_ = found->heldNs;
  return lastHeldNs_;
}

void CodedHold::close() {
  {
    MutexLock lock(mutex_);
    closed_ = true;
  }
  wake_.notify_all();
}

}  // namespace korvia

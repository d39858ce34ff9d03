// Holds the coded pictures of a stream back until shortly before they are shown, because a decoded picture
// takes a hundred times the memory. Thread of the demuxer: arrive. Thread of the decoder: waitUntilDue.
// Thread that decoded pictures come on: heldNs. Any thread: close.
#pragma once
#include <cstdint>
#include <deque>
#include <optional>

#include "ThreadSafety.h"

namespace korvia {

class CodedHold {
 public:
  /// Time stamps of coded data. Without a decoding time they have the presentation time in both.
  struct Stamps {
    std::int64_t presentationNs = 0;
    std::int64_t decodingNs = 0;
    friend bool operator==(const Stamps&, const Stamps&) = default;
  };

  /// `latencyNs` is that of the source's clock, from the undelayed arrival to the display.
  explicit CodedHold(std::int64_t latencyNs);
  /// The hold for a latency, in full length; 0 when it is too short to hold anything back.
  static std::int64_t holdFor(std::int64_t latencyNs);

  /// Data have come; they are passed to waitUntilDue in the same order.
  void arrive(const Stamps& stamps, std::int64_t nowNs) EXCLUDES(mutex_);
  /// Returns when these data may be decoded; false after close. `shownNs` is when a picture with their
  /// decoding stamp would be shown; none when that is unknown. Data that did not arrive() pass at once.
  bool waitUntilDue(const Stamps& stamps, std::optional<std::int64_t> shownNs) EXCLUDES(mutex_);
  /// A picture with this stamp has been decoded. Returns how long it was held back.
  std::int64_t heldNs(std::int64_t presentationNs) EXCLUDES(mutex_);
  /// Ends all waits, for good.
  void close() EXCLUDES(mutex_);

 private:
  struct Waiting {
    Stamps stamps;
    std::int64_t arrivalNs = 0;
  };
  struct Passed {
    std::int64_t presentationNs = 0;
    std::int64_t heldNs = 0;
  };

  std::int64_t dueNs(const Waiting& data, std::optional<std::int64_t> shownNs) const REQUIRES(mutex_);

  const std::int64_t holdNs_;
  Mutex mutex_;
  ConditionVariable wake_;
  std::deque<Waiting> waiting_ GUARDED_BY(mutex_);
  std::deque<Passed> passed_ GUARDED_BY(mutex_);
  std::int64_t lastHeldNs_ GUARDED_BY(mutex_) = 0;
  std::optional<std::int64_t> beginNs_ GUARDED_BY(mutex_);  // when the first picture was decoded
  bool closed_ GUARDED_BY(mutex_) = false;
};

}  // namespace korvia

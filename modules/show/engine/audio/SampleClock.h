// The clock that counts the samples of a stream, estimated from the moments at which they are handed over.
// Those moments jitter, and are never too early, so the line runs through the earliest of them. One thread at
// a time; the owner locks.
#pragma once
#include <cstdint>

#include "engine/source/DriftEstimator.h"

namespace korvia {

class SampleClock {
 public:
  /// The stream has `samples` so far, at `nowNs`.
  void add(std::int64_t samples, std::int64_t nowNs);
  bool hasBegun() const { return begun_; }
  /// Samples of the stream at `nowNs` without jitter, between two whole samples too. Needs one add before.
  double positionAt(std::int64_t nowNs) const;
  /// By how many parts in 10^6 the stream runs faster than 48 kHz; 0 until half a minute has passed.
  double ppm() const { return estimator_.driftPpm(); }

 private:
  DriftEstimator estimator_;
  bool begun_ = false;
  // Where the count and the time began, so that transit times are small numbers.
  std::int64_t firstSamples_ = 0;
  std::int64_t firstNs_ = 0;
};

}  // namespace korvia

#include "SampleClock.h"

#include "SampleTime.h"

namespace korvia {

void SampleClock::add(std::int64_t samples, std::int64_t nowNs) {
  if (!begun_) {
    firstSamples_ = samples;
    firstNs_ = nowNs;
    begun_ = true;
  }
  const std::int64_t timeNs = nowNs - firstNs_;
  estimator_.add(timeNs - nsOfSamples(samples - firstSamples_), timeNs);
}

double SampleClock::positionAt(std::int64_t nowNs) const {
  const std::int64_t timeNs = nowNs - firstNs_;
  const auto playedNs = static_cast<double>(timeNs - estimator_.transitAt(timeNs));
  return static_cast<double>(firstSamples_) + playedNs * 1e-9 * kSampleRate;
}

}  // namespace korvia

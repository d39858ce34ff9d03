// The control loop of a DriftCorrector: how fast samples have to be pulled so that the delay between the two
// sides stays what it is meant to be. It counts samples and never sees them. One thread at a time; the owner
// locks.
#pragma once
#include <cstdint>

#include "SampleClock.h"

namespace korvia {

class DriftLoop {
 public:
  explicit DriftLoop(int targetSamples) : targetSamples_(targetSamples) {}

  /// `written` samples have been pushed so far, the last of them at `nowNs`.
  void push(std::int64_t written, std::int64_t nowNs);
  /// Forgets what was pushed, because the count does not go on in time.
  void restartPushes() { pushes_ = {}; }
  /// Forgets what was pulled. The drift that was measured stays.
  void restartPulls();
  /// The position to be read at `nowNs` for the delay to be right; needs a push before.
  double placeAt(std::int64_t nowNs) const { return pushes_.positionAt(nowNs) - targetSamples_; }
  bool hasPushes() const { return pushes_.hasBegun(); }

  /// `samples` are pulled at `nowNs`, from `position` of the pushed samples on. Returns the speed for them,
  /// in pushed samples for each pulled one.
  double pull(int samples, double position, std::int64_t nowNs);
  /// How much later than meant the last pull has read; a mean, without the jitter.
  double errorSamples() const { return errorSamples_; }
  /// How much faster samples are pushed than pulled; 0 until half a minute has passed.
  double ppm() const { return ppm_; }

 private:
  const int targetSamples_;
  SampleClock pushes_;
  SampleClock pulls_;
  std::int64_t pulled_ = 0;
  std::int64_t lastPullNs_ = 0;
  double speed_ = 1;
  double errorSamples_ = 0;
  double ppm_ = 0;
};

}  // namespace korvia

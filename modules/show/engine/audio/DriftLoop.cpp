#include "DriftLoop.h"

#include <algorithm>

#include "StereoSpan.h"

namespace korvia {

namespace {

// What the delay is wrong by is made up for in this time, with a change of the pitch of no more than 0.1 %,
// two cents, which nobody hears.
constexpr double kSettleSamples = 10.0 * kSampleRate;
constexpr double kMostCorrection = 1e-3;

}  // namespace

void DriftLoop::push(std::int64_t written, std::int64_t nowNs) {
  pushes_.add(written, nowNs);
}

void DriftLoop::restartPulls() {
  pulls_ = {};
  pulled_ = 0;
  errorSamples_ = 0;
}

double DriftLoop::pull(int samples, double position, std::int64_t nowNs) {
  // Pulls with the same time are pieces of one.
  if (!pulls_.hasBegun() || nowNs != lastPullNs_)
    pulls_.add(pulled_, nowNs);
  lastPullNs_ = nowNs;
  if (pushes_.ppm() != 0 && pulls_.ppm() != 0)
    ppm_ = pushes_.ppm() - pulls_.ppm();
  const double undelayed = position + (pulls_.positionAt(nowNs) - static_cast<double>(pulled_)) * speed_;
  errorSamples_ = placeAt(nowNs) - undelayed;
  speed_ = 1 + ppm_ * 1e-6 + std::clamp(errorSamples_ / kSettleSamples, -kMostCorrection, kMostCorrection);
  pulled_ += samples;
  return speed_;
}

}  // namespace korvia

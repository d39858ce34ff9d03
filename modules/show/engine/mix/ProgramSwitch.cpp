#include "ProgramSwitch.h"

#include <algorithm>
#include <cmath>

#include "Easing.h"
#include "SeededRandom.h"

namespace korvia {

namespace {

constexpr double kDurationMax = 600;

// Exactly 1 reports the end of a take and nothing else; some curves reach 1 earlier.
const float kPositionMax = std::nextafter(1.0F, 0.0F);

}  // namespace

const Transition* ProgramSwitch::transition() const {
  return transitionFor(take_.effect);
}

void ProgramSwitch::take(const Take& take, double framesPerSecond) {
  if (isRunning() && take.to == take_.to && mode_ == Mode::Auto)
    return;
  if (mode_ == Mode::Lever && take.to == take_.to && transition()) {
    // Another effect in the middle of a take would make the picture jump.
    start_ = position_;
    take_.duration = take.duration;
    take_.easing = take.easing;
  } else {
    start_ = 0;
    begin(take);
  }
  lastEffect_ = take.effect;
  const double seconds = std::isfinite(take.duration) ? std::clamp(take.duration, 0.0, kDurationMax) : 0;
  totalFrames_ = std::llround(seconds * framesPerSecond);
  elapsedFrames_ = 0;
  mode_ = Mode::Auto;
  if (totalFrames_ < 1 || !transitionFor(take.effect) || take_.from == take_.to)
    complete();
}

void ProgramSwitch::moveLever(float position, int from, int to) {
  if (std::isnan(position))
    return;
  const double p = std::clamp(static_cast<double>(position), 0.0, 1.0);
  if (!isRunning())
    begin({from, to, lastEffect_, 0, 0});
  mode_ = Mode::Lever;
  if (p >= 1) {
    complete();
    return;
  }
  setPosition(p);
  if (p <= 0)
    mode_ = Mode::Idle;
}

void ProgramSwitch::step(int frames) {
  if (mode_ != Mode::Auto)
    return;
  elapsedFrames_ += frames;
  if (elapsedFrames_ >= totalFrames_) {
    complete();
    return;
  }
  const double progress = static_cast<double>(elapsedFrames_) / static_cast<double>(totalFrames_);
  setPosition(start_ + (1 - start_) * easedProgress(take_.easing, progress));
}

void ProgramSwitch::finish() {
  if (isRunning())
    complete();
}

void ProgramSwitch::abandon() {
  if (!isRunning())
    return;
  mode_ = Mode::Idle;
  setPosition(0);
}

void ProgramSwitch::begin(const Take& take) {
  take_ = take;
  // The seed depends on the number of takes alone, so that a show gives the same pictures when it is
  // repeated.
  seed_ = hashBits(++takeCount_);
}

void ProgramSwitch::setPosition(double position) {
  position_ = std::min(position, static_cast<double>(kPositionMax));
  outcome_.moved = true;
  outcome_.position = std::min(static_cast<float>(position), kPositionMax);
}

void ProgramSwitch::complete() {
  mode_ = Mode::Idle;
  position_ = 0;
  outcome_ = {true, 1.0F, take_.to};
}

ProgramSwitch::Outcome ProgramSwitch::takeOutcome() {
  const Outcome outcome = outcome_;
  outcome_ = {};
  return outcome;
}

}  // namespace korvia

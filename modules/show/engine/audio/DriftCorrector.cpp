#include "DriftCorrector.h"

#include <cmath>
#include <utility>

namespace korvia {

namespace {

// A delay that is wrong by more than this is set right at once, with a fade, because resampling would take
// minutes.
constexpr double kMostErrorSamples = kSampleRate / 5.0;

}  // namespace

DriftCorrector::DriftCorrector(int targetSamples)
    : buffer_(targetSamples + kSampleRate), loop_(targetSamples) {}

void DriftCorrector::push(const float* interleaved, int samples, std::int64_t nowNs) {
  notePush(buffer_.push(interleaved, samples), nowNs);
}

void DriftCorrector::push(StereoSpan sound, std::int64_t nowNs) {
  notePush(buffer_.push(sound), nowNs);
}

void DriftCorrector::notePush(bool accepted, std::int64_t nowNs) {
  MutexLock lock(mutex_);
  if (!accepted) {
    figures_.overruns += overrun_ ? 0 : 1;
    overrun_ = true;
    loop_.restartPushes();
    return;
  }
  loop_.push(buffer_.written(), nowNs);
}

bool DriftCorrector::begin(std::int64_t nowNs) {
  if (std::exchange(overrun_, false))
    buffer_.skipTo(buffer_.written());
  if (!loop_.hasPushes())
    return false;
  const std::int64_t place = std::llround(loop_.placeAt(nowNs));
  if (place < static_cast<std::int64_t>(buffer_.position()) || place > buffer_.written())
    return false;
  buffer_.start(place);
  loop_.restartPulls();
  delayIsWrong_ = false;
  return true;
}

bool DriftCorrector::pull(StereoSpan out, std::int64_t nowNs) {
  double speed = 1;
  {
    MutexLock lock(mutex_);
    if (!buffer_.isPlaying() && !begin(nowNs))
      return false;
    speed = loop_.pull(out.samples, buffer_.position(), nowNs);
    figures_.ppm = loop_.ppm();
    figures_.errorSamples = loop_.errorSamples();
    delayIsWrong_ = delayIsWrong_ || std::abs(loop_.errorSamples()) > kMostErrorSamples;
    if (overrun_ || delayIsWrong_)
      buffer_.fadeOut();
  }
  buffer_.pull(out, speed);
  if (!buffer_.isPlaying()) {
    MutexLock lock(mutex_);
    end();
  }
  return true;
}

void DriftCorrector::end() {
  if (overrun_ || delayIsWrong_)
    return;
  ++figures_.underruns;
  // What is left belongs to the time before the gap.
  buffer_.skipTo(buffer_.written());
  loop_.restartPushes();
}

DriftCorrector::Figures DriftCorrector::figures() const {
  MutexLock lock(mutex_);
  return figures_;
}

}  // namespace korvia

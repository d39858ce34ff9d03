#include "LiveAudioQueue.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/EngineLog.h"
#include "engine/audio/SampleTime.h"

namespace korvia {

namespace {

// Stamps are rounded and jitter, so their mean counts. A larger difference is a jump.
constexpr std::int64_t kMostStampErrorNs = 20'000'000;
constexpr std::int64_t kStampMean = 32;
// A difference from the clock is made up for in this time, by 0.1 % at most; a larger one than a tenth of a
// second at once.
constexpr double kSettleSamples = 5.0 * kSampleRate;
constexpr double kMostCorrection = 1e-3;
constexpr double kMostErrorSamples = kSampleRate / 10.0;
// LiveClock runs at most 0.5 % faster or slower than the source, and drift is at most 0.1 %.
constexpr double kMostSpeedChange = 7e-3;

// A stream that breaks up again and again does not fill the log.
constexpr std::chrono::seconds kQuiet{30};

}  // namespace

LiveAudioQueue::LiveAudioQueue(const QString& name, std::int64_t spanNs)
    : name_(name), buffer_(static_cast<int>(samplesInNs(spanNs))) {}

// Source's thread.

void LiveAudioQueue::push(const float* interleaved, int samples, std::int64_t timeNs) {
  const std::int64_t first = buffer_.written();
  note(buffer_.push(interleaved, samples), first, timeNs);
}

void LiveAudioQueue::push(StereoSpan sound, std::int64_t timeNs) {
  const std::int64_t first = buffer_.written();
  note(buffer_.push(sound), first, timeNs);
}

void LiveAudioQueue::note(bool taken, std::int64_t first, std::int64_t timeNs) {
  if (taken)
    anchor(first, timeNs);
  else
    refused_ = true;
}

void LiveAudioQueue::anchor(std::int64_t first, std::int64_t timeNs) {
  const std::int64_t zeroNs = timeNs - nsOfSamples(first);
  bool jumped = false;
  bool underrun = false;
  {
    MutexLock lock(mutex_);
    const std::int64_t errorNs = pushed_ ? zeroNs - pushed_->zeroNs : 0;
    jumped = pushed_ && (refused_ || std::abs(errorNs) > kMostStampErrorNs);
    if (!pushed_ || jumped)
      pushed_ = Anchor{zeroNs, first, pushed_ ? pushed_->number + 1 : 0};
    else
      pushed_->zeroNs += errorNs / kStampMean;
    figures_.jumps += jumped ? 1 : 0;
    underrun = std::exchange(underrunsLogged_, figures_.underruns) != figures_.underruns;
  }
  refused_ = false;
  const auto now = std::chrono::steady_clock::now();
  if ((!jumped && !underrun) || now < quietUntil_)
    return;
  quietUntil_ = now + kQuiet;
  if (jumped)
    qCWarning(logSource, "sound of a live source jumps : %s", qUtf8Printable(name_));
  else
    qCWarning(logSource, "sound of a live source was interrupted : %s", qUtf8Printable(name_));
}

// Engine thread.

void LiveAudioQueue::advance(const ClockReading& reading) {
  // Nobody has heard the last tick, so nothing clicks.
  if (!std::exchange(pulled_, false))
    buffer_.stop();
  mayBegin_ = false;
  if (!reading.started || !reading.running)
    buffer_.fadeOut();
  else
    follow(reading);
  lastNs_ = reading.timeNs;
}

void LiveAudioQueue::follow(const ClockReading& reading) {
  std::optional<Anchor> pushed;
  {
    MutexLock lock(mutex_);
    pushed = pushed_;
  }
  if (!pushed)
    return;
  const bool jumped = played_ && played_->number != pushed->number;
  if (!buffer_.isPlaying()) {
    if (jumped || !played_)
      buffer_.skipTo(pushed->first);
    played_ = pushed;
  } else if (jumped) {
    buffer_.fadeOut();
    return;
  } else {
    played_ = pushed;
  }
  const std::int64_t tickNs = reading.timeNs - (reading.ticks - 1) * reading.frameNs;
  const double wanted = static_cast<double>(tickNs - played_->zeroNs) * 1e-9 * kSampleRate;
  if (buffer_.isPlaying()) {
    setSpeed(reading, wanted);
    return;
  }
  const auto oldest = static_cast<std::int64_t>(buffer_.position());
  start_ = std::llround(wanted);
  buffer_.skipTo(start_);
  mayBegin_ = start_ >= oldest && start_ <= buffer_.written();
  speed_ = 1;
}

void LiveAudioQueue::setSpeed(const ClockReading& reading, double wanted) {
  const double error = wanted - buffer_.position();
  const double passedNs = static_cast<double>(reading.ticks * reading.frameNs);
  const double follows = static_cast<double>(reading.timeNs - lastNs_) / passedNs - 1;
  const double corrects = std::clamp(error / kSettleSamples, -kMostCorrection, kMostCorrection);
  speed_ = 1 + std::clamp(follows + corrects, -kMostSpeedChange, kMostSpeedChange);
  if (std::abs(error) > kMostErrorSamples)
    buffer_.fadeOut();
  MutexLock lock(mutex_);
  figures_.errorSamples = error;
  figures_.speed = speed_;
}

bool LiveAudioQueue::pull(StereoSpan out) {
  pulled_ = true;
  if (std::exchange(mayBegin_, false))
    buffer_.start(start_);
  const bool fadesAnyway = buffer_.isFadingOut();
  if (!buffer_.pull(out, speed_))
    return false;
  if (!buffer_.isPlaying() && !fadesAnyway) {
    MutexLock lock(mutex_);
    ++figures_.underruns;
  }
  return true;
}

LiveAudioQueue::Figures LiveAudioQueue::figures() const {
  MutexLock lock(mutex_);
  return figures_;
}

}  // namespace korvia

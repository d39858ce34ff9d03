#include "ProgramPacer.h"

#include <algorithm>
#include <cmath>

#include "engine/audio/Limiter.h"

namespace korvia {

namespace {

// Threads that are woken late, on both sides.
constexpr int kJitterSamples = kSampleRate / 25;
// The picture follows the sound when it is wrong by more than this. It is less than a frame, so that the two
// stay together, and more than half a frame, so that jitter at the border of two frames changes nothing.
constexpr double kMostErrorFrames = 0.75;
// A place that is wrong by more is found anew.
constexpr double kJumpFrames = 3;

int samplesOf(FrameRate rate) {
  return static_cast<int>(std::min<std::int64_t>(rate.samplesIn(0, 1, kSampleRate) + 1, kSampleRate));
}

/// From the push of a frame's sound to its pull.
int delaySamples(FrameRate show, FrameRate device) {
  return samplesOf(show) + samplesOf(device) + VarispeedBuffer::kReserve + kJitterSamples;
}

int queueCapacity(FrameRate show, FrameRate device) {
  constexpr int kSpareFrames = 4;
  return delaySamples(show, device) / samplesOf(show) + kSpareFrames;
}

}  // namespace

ProgramPacer::ProgramPacer(FrameRate show, FrameRate device)
    : show_(show),
      frameSamples_(kSampleRate / show.framesPerSecond()),
      sound_(delaySamples(show, device)),
      queue_(queueCapacity(show, device)) {}

void ProgramPacer::pushFrame(const FrameRef& frame) {
  const std::int64_t samples = show_.samplesIn(frames_, 1, kSampleRate);
  ++frames_;
  // Sound that was refused, because nobody pulled, is not counted.
  const std::int64_t position = std::min(nextPosition_, sound_.pushed() - samples);
  nextPosition_ = position + samples;
  MutexLock lock(mutex_);
  if (!accepting_)
    return;
  newest_ = frame;
  if (queue_.push(frame, position))
    return;
  queue_.pop();
  queue_.push(frame, position);
  ++dropped_;
}

void ProgramPacer::begin() {
  wanted_.reset();
  MutexLock lock(mutex_);
  accepting_ = true;
}

void ProgramPacer::end() {
  current_.reset();
  MutexLock lock(mutex_);
  accepting_ = false;
  newest_.reset();
  while (!queue_.isEmpty())
    queue_.pop();
}

FrameRef ProgramPacer::pull(StereoSpan sound, std::int64_t nowNs) {
  if (sound_.pull(sound, nowNs)) {
    place(sound.samples);
  } else {
    std::fill_n(sound.left, sound.samples, 0.0F);
    std::fill_n(sound.right, sound.samples, 0.0F);
  }
  if (!wanted_)
    return current_ ? current_ : newest();
  take(*wanted_ + frameSamples_ / 2);
  *wanted_ += sound.samples;
  return current_;
}

/// Finds the picture for the sound that was just pulled.
void ProgramPacer::place(std::int64_t soundSamples) {
  // The sound of a picture comes later than the picture by what the limiter takes.
  const double soundPlace = sound_.position() - static_cast<double>(soundSamples) - Limiter::kLatencySamples;
  if (wanted_ && std::abs(*wanted_ - soundPlace) < kJumpFrames * frameSamples_) {
    const double error = (*wanted_ - soundPlace) / frameSamples_;
    if (std::abs(error) > kMostErrorFrames)
      *wanted_ -= std::copysign(frameSamples_, error);
    return;
  }
  // On the nearest frame, so that jitter is farthest from choosing another one.
  take(soundPlace - frameSamples_ / 2);
  MutexLock lock(mutex_);
  wanted_ = queue_.isEmpty() ? soundPlace : static_cast<double>(queue_.front().index);
}

/// Goes on to the last frame whose sound begins at this position or before.
void ProgramPacer::take(double lastPosition) {
  MutexLock lock(mutex_);
  while (!queue_.isEmpty() && static_cast<double>(queue_.front().index) <= lastPosition)
    current_ = queue_.pop().frame;
}

FrameRef ProgramPacer::newest() {
  MutexLock lock(mutex_);
  return newest_;
}

std::int64_t ProgramPacer::droppedFrames() const {
  MutexLock lock(mutex_);
  return dropped_;
}

}  // namespace korvia

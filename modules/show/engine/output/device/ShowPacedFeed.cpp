#include "ShowPacedFeed.h"

#include <algorithm>

#include "engine/audio/Limiter.h"

namespace korvia {

namespace {

// A third of a second at 25 frames a second.
constexpr int kQueuedFrames = 8;
constexpr int kQueuedSamples = kSampleRate / 2;
constexpr qint64 kMostSilence = kSampleRate;

}  // namespace

ShowPacedFeed::ShowPacedFeed(FrameRate rate, Sound sound)
    : rate_(rate),
      soundWanted_(sound),
      queue_(kQueuedFrames),
      sound_(sound == Sound::Program ? kQueuedSamples : 1) {}

void ShowPacedFeed::pushSound(StereoSpan sound, qint64) {
  if (soundWanted_ == Sound::None)
    return;
  // The limiter gives sound out later than the picture that it belongs to.
  const qint64 first = samples_ - Limiter::kLatencySamples;
  samples_ += sound.samples;
  const int early = static_cast<int>(std::clamp<qint64>(-first, 0, sound.samples));
  MutexLock lock(mutex_);
  if (accepting_ && early < sound.samples)
    sound_.push(sound.part(early, sound.samples - early), first + early);
}

void ShowPacedFeed::pushFrame(const FrameRef& frame) {
  const qint64 index = frames_++;
  MutexLock lock(mutex_);
  if (accepting_ && frame && !queue_.push(frame, index))
    ++dropped_;
}

void ShowPacedFeed::begin() {
  firstFrame_ = -1;
  soundEnd_ = 0;
  MutexLock lock(mutex_);
  clear();
  accepting_ = true;
}

void ShowPacedFeed::end() {
  MutexLock lock(mutex_);
  accepting_ = false;
  clear();
}

void ShowPacedFeed::clear() {
  while (!queue_.isEmpty())
    queue_.pop();
  sound_.clear();
}

void ShowPacedFeed::feed(DevicePipeline& pipeline) {
  while (pipeline.hasRoom()) {
    QueuedFrame next;
    {
      MutexLock lock(mutex_);
      if (queue_.isEmpty())
        break;
      next = queue_.pop();
    }
    if (firstFrame_ < 0)
      firstFrame_ = next.index;
    pipeline.pushPicture(next.frame, next.index - firstFrame_);
  }
  if (soundWanted_ == Sound::Program && firstFrame_ >= 0 && pipeline.hasRoomForSound())
    feedSound(pipeline);
}

void ShowPacedFeed::feedSound(DevicePipeline& pipeline) {
  qint64 first = 0;
  {
    MutexLock lock(mutex_);
    if (sound_.isEmpty())
      return;
    first = sound_.popAll(pairs_);
  }
  first -= rate_.samplesIn(0, firstFrame_, kSampleRate);
  auto count = static_cast<qint64>(pairs_.size() / 2);
  // What comes before the first frame belongs to a picture before it.
  const qint64 early = std::clamp<qint64>(soundEnd_ - first, 0, count);
  pairs_.erase(pairs_.begin(), pairs_.begin() + 2 * early);
  first += early;
  count -= early;
  if (count == 0)
    return;
  // What was left out becomes silence. Of a longer gap the time stamps tell.
  const qint64 silence = std::clamp<qint64>(first - soundEnd_, 0, kMostSilence);
  pairs_.insert(pairs_.begin(), 2 * static_cast<std::size_t>(silence), 0.0F);
  first -= silence;
  count += silence;
  pipeline.pushSound(pairs_.data(), static_cast<int>(count), first);
  soundEnd_ = first + count;
}

qint64 ShowPacedFeed::droppedFrames() const {
  MutexLock lock(mutex_);
  return dropped_;
}

}  // namespace korvia

#include "AudioQueue.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/audio/SampleTime.h"

namespace korvia {

namespace {

// A little more than 1.3 s, a power of two.
constexpr std::int64_t kCapacity = 65536;
constexpr std::int64_t kMask = kCapacity - 1;
// A queue that was full is filled again from here, so that a decoder works in bursts.
constexpr std::int64_t kRefill = kCapacity / 2;
// The clock starts with this much sound, so that it does not run out in the first ticks.
constexpr std::int64_t kBeginSamples = kSampleRate / 5;
// Time stamps are rounded to ms in some containers, and jitter in others.
constexpr std::int64_t kMostStampError = kSampleRate / 50;
// Between two parts a difference is audible as a gap, or the sound goes on without one.
constexpr std::int64_t kMostJointError = kSampleRate / 1000;
// The ticks of the clock and those of the mixer are rounded to samples each for itself.
constexpr std::int64_t kMostTickError = 8;
// As for pictures: sound that is later is waited for.
constexpr std::int64_t kLatestNs = 1'000'000'000;
// Pushed under one lock.
constexpr int kPiece = 4096;
constexpr std::int64_t kAnyTime = std::numeric_limits<std::int64_t>::min();

GainRamp risingGain() {
  GainRamp gain(GainRamp::Gain::Silent);
  gain.fadeTo(GainRamp::Gain::Full);
  return gain;
}

std::size_t slot(std::int64_t index) {
  return static_cast<std::size_t>(index & kMask);
}

}  // namespace

AudioQueue::AudioQueue(MediaClock& clock)
    : clock_(clock),
      number_(clock.addQueue()),
      left_(kCapacity),
      right_(kCapacity),
      partStart_(kAnyTime),
      tailLeft_{},
      tailRight_{} {}

// Streaming and control threads.

AudioQueue::Part AudioQueue::part() const {
  MutexLock lock(mutex_);
  return part_;
}

std::int64_t AudioQueue::placeOf(std::int64_t index) const {
  const std::int64_t error = partHasBegun_ ? kMostStampError : kMostJointError;
  return holdsAny_ && std::abs(index - continuation_) <= error ? continuation_ : index;
}

std::int64_t AudioQueue::roomAt(std::int64_t place) const {
  std::int64_t oldest = first_;
  if (first_ == end_)
    oldest = nextIsKnown_ ? std::min(next_, place) : place;
  return oldest + kCapacity - place;
}

bool AudioQueue::mayPush(std::int64_t place) const {
  const std::int64_t room = roomAt(place);
  return room > (resting_ ? kCapacity - kRefill : 0);
}

void AudioQueue::waitForRoom(MutexLock& lock, Part part, std::int64_t index) {
  if (mayPush(placeOf(index)))
    return;
  resting_ = true;
  waitingAt_ = index;
  room_.wait(lock, [&]() REQUIRES(mutex_) { return closed_ || part != part_ || mayPush(placeOf(index)); });
  waitingAt_.reset();
  resting_ = false;
}

bool AudioQueue::push(Part part, StereoSpan sound, std::int64_t timeNs) {
  std::int64_t index = samplesInNs(timeNs);
  for (int done = 0; done < sound.samples;) {
    MutexLock lock(mutex_);
    if (index < partStart_) {
      const auto early = static_cast<int>(std::min<std::int64_t>(partStart_ - index, sound.samples - done));
      index += early;
      done += early;
      continue;
    }
    waitForRoom(lock, part, index);
    if (closed_ || part != part_)
      return false;
    const std::int64_t place = placeOf(index);
    const auto count = static_cast<int>(
        std::min({static_cast<std::int64_t>(sound.samples - done), roomAt(place), std::int64_t{kPiece}}));
    joinEnd(place);
    put(place, sound.part(done, count));
    if (!begun_ && end_ - epochStart_ >= kBeginSamples)
      begin();
    index = place + count;
    done += count;
  }
  return true;
}

void AudioQueue::begin() {
  begun_ = true;
  if (holdsAny_)
    clock_.begin(number_, epoch_, nsOfSamples(epochStart_));
  else
    clock_.beginWithout(number_, epoch_);
}

void AudioQueue::joinEnd(std::int64_t place) {
  const bool goesOn = holdsAny_ && place == continuation_;
  if (!holdsAny_) {
    epochStart_ = first_ = end_ = place;
  } else if (!goesOn) {
    if (place < end_)
      cutAt(place);
    else
      fadeEnd();
    if (first_ == end_ || place - first_ >= kCapacity)
      first_ = end_ = place;
    for (; end_ < place; ++end_)
      left_[slot(end_)] = right_[slot(end_)] = 0;
  }
  const bool crosses = !partHasBegun_ && place < end_;
  if (!goesOn || crosses || endIsFaded_)
    pushGain_ = risingGain();
  holdsAny_ = true;
  partHasBegun_ = true;
  endIsFaded_ = false;
}

void AudioQueue::put(std::int64_t place, StereoSpan sound) {
  for (int i = 0; i < sound.samples; ++i) {
    const std::int64_t index = place + i;
    const float gain = pushGain_.next();
    if (index < first_)
      continue;
    float& left = left_[slot(index)];
    float& right = right_[slot(index)];
    // Before end_ the sound of the part before fades out.
    left = (index < end_ ? left : 0) + gain * sound.left[i];
    right = (index < end_ ? right : 0) + gain * sound.right[i];
  }
  continuation_ = place + sound.samples;
  end_ = std::max(end_, continuation_);
}

void AudioQueue::cutAt(std::int64_t index) {
  const std::int64_t from = std::max(index, nextIsKnown_ ? std::max(first_, next_) : first_);
  if (from >= end_)
    return;
  end_ = std::min(end_, from + GainRamp::kSamples);
  GainRamp gain(GainRamp::Gain::Full);
  gain.fadeTo(GainRamp::Gain::Silent);
  for (std::int64_t i = from; i < end_; ++i) {
    const float g = gain.next();
    left_[slot(i)] *= g;
    right_[slot(i)] *= g;
  }
}

void AudioQueue::fadeEnd() {
  if (std::exchange(endIsFaded_, true))
    return;
  const std::int64_t oldest = nextIsKnown_ ? std::max(first_, next_) : first_;
  const std::int64_t from = std::max(end_ - GainRamp::kSamples, oldest);
  for (std::int64_t i = from; i < end_; ++i) {
    const float g = static_cast<float>(end_ - 1 - i) / static_cast<float>(end_ - from);
    left_[slot(i)] *= g;
    right_[slot(i)] *= g;
  }
}

void AudioQueue::markEnd(Part part) {
  MutexLock lock(mutex_);
  if (part == part_ && !begun_)
    begin();
}

AudioQueue::Part AudioQueue::joinAt(std::int64_t timeNs) {
  Part part = 0;
  {
    MutexLock lock(mutex_);
    partStart_ = samplesInNs(timeNs);
    if (holdsAny_)
      cutAt(partStart_);
    continuation_ = std::min(end_, partStart_);
    partHasBegun_ = false;
    part = ++part_;
  }
  room_.notify_all();
  return part;
}

void AudioQueue::interrupt() {
  {
    MutexLock lock(mutex_);
    ++part_;
  }
  room_.notify_all();
}

void AudioQueue::beginFlush(std::uint64_t epoch) {
  {
    MutexLock lock(mutex_);
    fallSilent();
    ++part_;
    partHasBegun_ = false;
    partStart_ = kAnyTime;
    epoch_ = epoch;
    begun_ = false;
    first_ = end_ = 0;
    holdsAny_ = false;
    endIsFaded_ = false;
    nextIsKnown_ = false;
  }
  room_.notify_all();
}

void AudioQueue::close() {
  {
    MutexLock lock(mutex_);
    closed_ = true;
  }
  room_.notify_all();
}

std::int64_t AudioQueue::queuedSamples() const {
  MutexLock lock(mutex_);
  return end_ - first_;
}

// Engine thread.

AudioQueue::Tick AudioQueue::advance(const ClockReading& reading) {
  Tick tick;
  bool wakes = false;
  {
    MutexLock lock(mutex_);
    heard_ = std::exchange(pulled_, false);
    if (!heard_)
      tailRead_ = GainRamp::kSamples;
    const bool current = reading.epoch == epoch_ && reading.started;
    if (!current || !reading.running) {
      fallSilent();
      return tick;
    }
    if (first_ < end_ && reading.timeNs - nsOfSamples(end_) > kLatestNs) {
      fallSilent();
      // The clock goes on by a frame from there.
      clock_.tellLate(reading, nsOfSamples(first_) - reading.frameNs);
      return tick;
    }
    const std::int64_t missedNs = (reading.ticks - 1) * reading.frameNs;
    const std::int64_t begin = samplesInNs(reading.timeNs - missedNs);
    if (!sounding_ || !heard_ || std::abs(begin - next_) > kMostTickError) {
      fallSilent();
      sounding_ = true;
      pullGain_ = risingGain();
      next_ = begin;
      nextIsKnown_ = true;
    }
    tick.taken = discard();
    const auto samples = static_cast<int>(samplesInNs(reading.ticks * reading.frameNs));
    if (first_ < end_ && end_ < next_ + samples + GainRamp::kSamples)
      fadeEnd();
    if (hasSoundAt(next_, samples))
      tick.timeNs = nsOfSamples(next_) + missedNs;
    wakes = waitingAt_ && mayPush(placeOf(*waitingAt_));
  }
  if (wakes)
    room_.notify_one();
  return tick;
}

int AudioQueue::discard() {
  const std::int64_t before = first_;
  first_ = std::clamp(next_, first_, end_);
  return static_cast<int>(first_ - before);
}

void AudioQueue::fallSilent() {
  if (!std::exchange(sounding_, false) || !(heard_ || pulled_))
    return;
  if (!hasSoundAt(next_, GainRamp::kSamples))
    return;
  const StereoSpan tail{tailLeft_.data(), tailRight_.data(), GainRamp::kSamples};
  read(next_, tail);
  pullGain_.fadeTo(GainRamp::Gain::Silent);
  pullGain_.apply(tail);
  tailRead_ = 0;
}

bool AudioQueue::hasSoundAt(std::int64_t index, int samples) const {
  return std::max(index, first_) < std::min(index + samples, end_);
}

void AudioQueue::read(std::int64_t index, StereoSpan out) const {
  for (int i = 0; i < out.samples; ++i) {
    const bool there = index + i >= first_ && index + i < end_;
    out.left[i] = there ? left_[slot(index + i)] : 0;
    out.right[i] = there ? right_[slot(index + i)] : 0;
  }
}

bool AudioQueue::pull(StereoSpan out) {
  MutexLock lock(mutex_);
  pulled_ = true;
  const std::int64_t index = next_;
  if (sounding_)
    next_ += out.samples;
  const bool plays = sounding_ && hasSoundAt(index, out.samples);
  if (!plays && tailRead_ == GainRamp::kSamples)
    return false;
  if (plays) {
    read(index, out);
    pullGain_.apply(out);
  } else {
    std::fill_n(out.left, out.samples, 0.0F);
    std::fill_n(out.right, out.samples, 0.0F);
  }
  for (int i = 0; i < out.samples && tailRead_ < GainRamp::kSamples; ++i, ++tailRead_) {
    out.left[i] += tailLeft_[static_cast<std::size_t>(tailRead_)];
    out.right[i] += tailRight_[static_cast<std::size_t>(tailRead_)];
  }
  return true;
}

}  // namespace korvia

#include "VarispeedBuffer.h"

#include <algorithm>
#include <bit>

namespace korvia {

namespace {

// Half the length of the resampler's filter: flat to 20 kHz at a delay of 0.7 ms.
constexpr unsigned kFilterHalf = 32;
constexpr int kMostAtOnce = 256;
// A change of the speed takes this many samples, so that it is a glide of the pitch and no step.
constexpr double kSpeedRampSamples = kSampleRate / 2.0;
// The resampler takes no more samples than this for one that it makes.
constexpr double kMostSpeed = 1.01;

}  // namespace

VarispeedBuffer::VarispeedBuffer(int samples)
    : mask_(static_cast<std::int64_t>(std::bit_ceil(static_cast<std::uint32_t>(samples))) - 1),
      samples_(2 * static_cast<std::size_t>(mask_ + 1)),
      made_(2 * kMostAtOnce) {
  resampler_.setup(1.0, 2, kFilterHalf);
  resampler_.set_rrfilt(kSpeedRampSamples);
}

bool VarispeedBuffer::hasRoom(int samples) const {
  return written_.load(std::memory_order_relaxed) + samples - read_.load(std::memory_order_acquire) <=
         mask_ + 1;
}

void VarispeedBuffer::put(std::int64_t position, float left, float right) {
  float* pair = samples_.data() + 2 * (position & mask_);
  pair[0] = left;
  pair[1] = right;
}

bool VarispeedBuffer::push(const float* interleaved, int samples) {
  if (!hasRoom(samples))
    return false;
  const std::int64_t first = written_.load(std::memory_order_relaxed);
  for (int i = 0; i < samples; ++i)
    put(first + i, interleaved[2 * i], interleaved[2 * i + 1]);
  written_.store(first + samples, std::memory_order_release);
  return true;
}

bool VarispeedBuffer::push(StereoSpan sound) {
  if (!hasRoom(sound.samples))
    return false;
  const std::int64_t first = written_.load(std::memory_order_relaxed);
  for (int i = 0; i < sound.samples; ++i)
    put(first + i, sound.left[i], sound.right[i]);
  written_.store(first + sound.samples, std::memory_order_release);
  return true;
}

double VarispeedBuffer::position() const {
  const auto read = static_cast<double>(read_.load(std::memory_order_relaxed));
  return playing_ ? read - resampler_.inpdist() : read;
}

void VarispeedBuffer::skipTo(std::int64_t position) {
  read_.store(std::clamp(position, read_.load(std::memory_order_relaxed), written()),
              std::memory_order_release);
}

void VarispeedBuffer::start(std::int64_t position) {
  skipTo(position);
  resampler_.reset();
  // The first half of the filter lies before the beginning.
  resampler_.inp_data = nullptr;
  resampler_.inp_count = kFilterHalf - 1;
  resampler_.out_data = made_.data();
  resampler_.out_count = 1;
  resampler_.process();
  gain_ = GainRamp(GainRamp::Gain::Silent);
  gain_.fadeTo(GainRamp::Gain::Full);
  playing_ = true;
}

bool VarispeedBuffer::pull(StereoSpan out, double speed) {
  if (!playing_)
    return false;
  resampler_.set_rratio(1 / speed);
  const auto left = static_cast<double>(written() - read_.load(std::memory_order_relaxed));
  if (left < out.samples * kMostSpeed + kReserve)
    fadeOut();
  const bool ends = gain_.isFadingOut();
  const int wanted = ends ? std::min(out.samples, gain_.samplesLeft()) : out.samples;
  const int made = resample(out.part(0, wanted));
  gain_.apply(out.part(0, made));
  std::fill(out.left + made, out.left + out.samples, 0.0F);
  std::fill(out.right + made, out.right + out.samples, 0.0F);
  if (made < wanted || gain_.isSilent())
    playing_ = false;
  return true;
}

int VarispeedBuffer::resample(StereoSpan out) {
  std::int64_t read = read_.load(std::memory_order_relaxed);
  const std::int64_t end = written();
  int made = 0;
  while (made < out.samples) {
    const int wanted = std::min(out.samples - made, kMostAtOnce);
    const std::int64_t untilWrap = mask_ + 1 - (read & mask_);
    const auto given = static_cast<unsigned>(std::min(end - read, untilWrap));
    resampler_.inp_data = samples_.data() + 2 * (read & mask_);
    resampler_.inp_count = given;
    resampler_.out_data = made_.data();
    resampler_.out_count = static_cast<unsigned>(wanted);
    resampler_.process();
    const int got = wanted - static_cast<int>(resampler_.out_count);
    for (int i = 0; i < got; ++i) {
      out.left[made + i] = made_[2 * static_cast<std::size_t>(i)];
      out.right[made + i] = made_[2 * static_cast<std::size_t>(i) + 1];
    }
    made += got;
    read += given - resampler_.inp_count;
    if (got == 0 && given == resampler_.inp_count)
      break;
  }
  read_.store(read, std::memory_order_release);
  return made;
}

}  // namespace korvia

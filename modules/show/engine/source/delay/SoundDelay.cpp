#include "SoundDelay.h"

#include <algorithm>

#include "engine/audio/StereoBlock.h"

namespace korvia {

SoundDelay::Samples SoundDelay::makeSamples(std::int64_t count) {
  auto* memory = static_cast<float*>(std::calloc(static_cast<std::size_t>(count), sizeof(float)));
  if (!memory)
    throw std::bad_alloc();
  return {memory, &std::free};
}

// Between two ends that are the delay apart there is room for a block that was pushed and not pulled yet.
SoundDelay::SoundDelay(std::int64_t samples)
    : capacity_(samples + kBlockSamplesMax),
      left_(makeSamples(capacity_)),
      right_(makeSamples(capacity_)),
      written_(samples % capacity_) {}

template <typename Part>
void SoundDelay::forParts(std::int64_t position, int samples, Part part) const {
  const int first = static_cast<int>(std::min<std::int64_t>(samples, capacity_ - position));
  part(position, 0, first);
  if (first < samples)
    part(std::int64_t{0}, first, samples - first);
}

void SoundDelay::push(StereoSpan sound) {
  forParts(written_, sound.samples, [&](std::int64_t at, int from, int count) {
    std::copy_n(sound.left + from, count, left_.get() + at);
    std::copy_n(sound.right + from, count, right_.get() + at);
  });
  written_ = (written_ + sound.samples) % capacity_;
}

void SoundDelay::pushSilence(int samples) {
  forParts(written_, samples, [&](std::int64_t at, int, int count) {
    std::fill_n(left_.get() + at, count, 0.0F);
    std::fill_n(right_.get() + at, count, 0.0F);
  });
  written_ = (written_ + samples) % capacity_;
}

void SoundDelay::pull(StereoSpan out) {
  forParts(read_, out.samples, [&](std::int64_t at, int from, int count) {
    std::copy_n(left_.get() + at, count, out.left + from);
    std::copy_n(right_.get() + at, count, out.right + from);
  });
  skip(out.samples);
}

}  // namespace korvia

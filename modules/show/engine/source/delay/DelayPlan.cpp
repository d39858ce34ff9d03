#include "DelayPlan.h"

#include <algorithm>

#include "PackedPicture.h"
#include "engine/audio/StereoBlock.h"

namespace korvia {

namespace {

constexpr std::int64_t kMsNs = 1'000'000;
// Places begin at pages of the file.
constexpr std::int64_t kPageBytes = 4096;
// A place is overwritten after this number of frames more than the delay: a picture may be used again for
// kDelayReuseFrames, and the writer may be some pictures behind.
constexpr int kSparePlaces = kDelayReuseFrames + 8;

int framesFor(FrameRate rate, int delayMs) {
  const std::int64_t halfFrameNs = rate.nsOf(1) / 2;
  auto frames = static_cast<int>(rate.framesIn(delayMs * kMsNs + halfFrameNs));
  frames = std::max(frames, 1);
  while (rate.samplesIn(0, frames, kSampleRate) < kBlockSamplesMax)
    ++frames;
  return frames;
}

std::int64_t placeBytesFor(FrameSize size, DelayPlan::PictureScale scale) {
  return (packedBytes(size, scale) + kPageBytes - 1) / kPageBytes * kPageBytes;
}

}  // namespace

DelayPlan planDelay(FrameSize size, FrameRate rate, int delayMs, const DelayLimits& limits) {
  DelayPlan plan;
  plan.frames = framesFor(rate, std::clamp(delayMs, 0, kLongestDelayMs));
  if (plan.frames * packedBytes(size, DelayPlan::PictureScale::Full) > limits.memoryBytes) {
    plan.store = DelayPlan::Store::File;
    const std::int64_t wanted = plan.frames + kSparePlaces;
    if (wanted * placeBytesFor(size, plan.scale) > limits.fileBytes)
      plan.scale = DelayPlan::PictureScale::Half;
    plan.placeBytes = placeBytesFor(size, plan.scale);
    const std::int64_t fitting = std::max<std::int64_t>(limits.fileBytes / plan.placeBytes, 0);
    const int shortest = framesFor(rate, 0);
    plan.isShortened = fitting < wanted;
    if (plan.isShortened)
      plan.frames = static_cast<int>(std::max<std::int64_t>(fitting - kSparePlaces, shortest));
    plan.places = plan.frames + kSparePlaces;
  }
  plan.samples = rate.samplesIn(0, plan.frames, kSampleRate);
  return plan;
}

}  // namespace korvia

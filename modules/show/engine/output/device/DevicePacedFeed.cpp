#include "DevicePacedFeed.h"

#include <algorithm>
#include <chrono>

namespace korvia {

namespace {

qint64 nowNs() {
  return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

}  // namespace

DevicePacedFeed::DevicePacedFeed(FrameRate show, FrameRate device) : rate_(device), pacer_(show, device) {}

void DevicePacedFeed::begin() {
  pictures_ = 0;
  pacer_.begin();
}

void DevicePacedFeed::feed(DevicePipeline& pipeline) {
  while (pipeline.hasRoom() && pipeline.hasRoomForSound()) {
    const qint64 first = rate_.samplesIn(0, pictures_, kSampleRate);
    const auto samples = static_cast<std::size_t>(rate_.samplesIn(pictures_, 1, kSampleRate));
    left_.assign(samples, 0.0F);
    right_.assign(samples, 0.0F);
    FrameRef picture;
    if (pictures_ < kSilentPictures)
      picture = pacer_.newest();
    else
      picture = pacer_.pull({left_.data(), right_.data(), static_cast<int>(samples)}, nowNs());
    pairs_.resize(2 * samples);
    for (std::size_t i = 0; i < samples; ++i) {
      pairs_[2 * i] = left_[i];
      pairs_[2 * i + 1] = right_[i];
    }
    pipeline.pushPicture(picture, pictures_);
    pipeline.pushSound(pairs_.data(), static_cast<int>(samples), first);
    ++pictures_;
  }
}

}  // namespace korvia

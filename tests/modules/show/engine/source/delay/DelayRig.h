// Drives a delay tick by tick as ChannelBank does, with pictures that have a number and sound that counts its
// samples.
#pragma once
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include "../SourceRig.h"
#include "engine/audio/StereoBlock.h"
#include "engine/source/delay/DelaySource.h"
#include "support/MixPictures.h"

namespace korvia::test {

inline constexpr FrameSize kDelaySize{64, 36};

/// A picture whose samples say the number, from 0 to 62'499.
inline FrameRef numbered(int number) {
  return frameOf(kDelaySize,
                 [number](int plane, int, int) { return plane == 0 ? number % 250 : number / 250; });
}

/// -1 for no picture.
inline int numberOf(const FrameRef& picture) {
  return picture ? picture->plane(Frame::Y)[0] + 250 * picture->plane(Frame::U)[0] : -1;
}

class DelayRig {
 public:
  enum class Store { Memory, File };
  /// In which order the mixer pulls the delay and the delayed channel.
  enum class Order { DelayFirst, DelayLast };

  DelayRig(int delayMs, FrameRate rate, Store store, DelayLimits limits = {}) : rate_(rate) {
    SourceContext context;
    context.renderSize = kDelaySize;
    context.rate = rate;
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindDelay;
    info.delayChannel = MediaChannel + 2;
    info.delayTime = delayMs;
    info.delayCachePath = folder_.path();
    if (store == Store::File)
      limits.memoryBytes = 0;
    limits.reserveBytes = std::min<std::int64_t>(limits.reserveBytes, 1 << 20);
    source_ = std::make_shared<DelaySource>(context, info, tagKorviaFormatInfo(), limits);
    isFile_ = store == Store::File;
  }
  ~DelayRig() {
    source_->close();
    source_.reset();
    waitForClosedSources(10'000);
  }

  DelaySource* operator->() { return source_.get(); }
  QString folder() const { return folder_.path(); }

  /// One tick with this picture; returns the number of the one that is shown. Waits before that for the file.
  int tick(const FrameRef& picture, int ticks = 1, Order order = Order::DelayFirst) {
    waitForFile();
    number_ += ticks;
    const FrameRef shown = source_->pullFrame(ticks);
    source_->tap()->onTappedPicture(picture, ticks);
    const int samples = static_cast<int>(rate_.samplesIn(number_ - ticks, ticks, kSampleRate));
    for (int done = 0; done < samples;) {
      const int piece = std::min(samples - done, kBlockSamplesMax);
      if (order == Order::DelayLast)
        feedSound(piece);
      hear(piece);
      if (order == Order::DelayFirst)
        feedSound(piece);
      done += piece;
    }
    return numberOf(shown);
  }

  /// Samples that differ from the sound `delay` samples before, with silence before the first.
  int wrongSamples(std::int64_t delay) const {
    int wrong = 0;
    for (std::size_t i = 0; i < heard_.size(); ++i) {
      const std::int64_t from = static_cast<std::int64_t>(i) - delay;
      wrong += heard_[i] != (from < 0 ? 0.0F : soundAt(from)) ? 1 : 0;
    }
    return wrong;
  }
  bool lastWasSound() const { return lastWasSound_; }
  float lastSample() const { return heard_.empty() ? 0 : heard_.back(); }
  void setSilent(bool silent) { silent_ = silent; }

 private:
  /// Never 0 and never the same as one of the neighbours.
  static float soundAt(std::int64_t sample) { return 0.1F + static_cast<float>(sample % 30'011) * 1e-5F; }

  // All that came is stored and what can be read ahead is read, so that the test does not depend on the speed
  // of the machine.
  void waitForFile() {
    if (!isFile_)
      return;
    constexpr std::int64_t kReadAhead = 8;
    const std::int64_t shown = std::max<std::int64_t>(number_ - source_->plan().frames, 0);
    const std::int64_t expected = std::min(kReadAhead, number_ - shown);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while ((source_->framesWaiting() > 0 || source_->figures().framesQueued < expected) &&
           source_->getPlayState() != Error && std::chrono::steady_clock::now() < end)
      std::this_thread::yield();
  }

  void feedSound(int samples) {
    if (silent_) {
      source_->tap()->onTappedSilence(samples);
    } else {
      const StereoSpan span = block_.span(samples);
      for (int i = 0; i < samples; ++i)
        span.left[i] = span.right[i] = soundAt(fed_ + i);
      source_->tap()->onTappedSound(span);
    }
    fed_ += samples;
  }

  void hear(int samples) {
    const StereoSpan span = block_.span(samples);
    lastWasSound_ = source_->pullSound(span);
    for (int i = 0; i < samples; ++i)
      heard_.push_back(lastWasSound_ ? span.left[i] : 0);
  }

  QTemporaryDir folder_;
  FrameRate rate_;
  std::shared_ptr<DelaySource> source_;
  bool isFile_ = false;
  std::int64_t number_ = 0;
  std::int64_t fed_ = 0;
  std::vector<float> heard_;
  bool lastWasSound_ = false;
  bool silent_ = false;
  StereoBlock block_;
};

}  // namespace korvia::test

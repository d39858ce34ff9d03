#include "EncoderTrials.h"

#include <QDeadlineTimer>
#include <chrono>
#include <memory>
#include <thread>

#include "engine/EngineLog.h"
#include "engine/ThreadName.h"
#include "engine/frame/FramePool.h"
#include "engine/source/GstInit.h"

namespace korvia {

namespace {

constexpr int kTrialMs = 1000;
// A trial that is cut shorter says nothing of an encoder.
constexpr int kShortestTrialMs = 500;
// An encoder may keep some frames before its first packet.
constexpr int kTrialFrames = 8;

bool isInstalled(const EncoderElement& encoder) {
  GstElementFactory* factory = gst_element_factory_find(encoder.factory);
  if (factory)
    gst_object_unref(factory);
  return factory != nullptr;
}

/// Shared with the thread of the trial, which is left behind when a driver hangs.
struct Trial {
  Mutex mutex;
  ConditionVariable changed;
  bool hasPacket GUARDED_BY(mutex) = false;
  bool works GUARDED_BY(mutex) = false;
  bool ended GUARDED_BY(mutex) = false;  // its pipeline is destroyed
};

void encodeBlack(const std::shared_ptr<Trial>& trial, const EncoderElement& encoder,
                 const PictureEncoding& encoding) {
  bool works = false;
  {
    FramePool pool(encoding.size);
    EncodePipeline pipeline(
        encoder,
        [trial](const Track&, const Packet&) {
          MutexLock lock(trial->mutex);
          trial->hasPacket = true;
          trial->changed.notify_all();
        },
        [trial] {
          MutexLock lock(trial->mutex);
          trial->changed.notify_all();
        });
    if (pipeline.open(encoding)) {
      for (int i = 0; i < kTrialFrames; ++i)
        pipeline.feed({pool.black(), i});
      MutexLock lock(trial->mutex);
      works = trial->changed.wait_for(
                  lock, std::chrono::milliseconds(kTrialMs),
                  [&]() REQUIRES(trial->mutex) { return trial->hasPacket || pipeline.hasFailed(); }) &&
              !pipeline.hasFailed();
    }
  }
  MutexLock lock(trial->mutex);
  trial->works = works;
  trial->ended = true;
  trial->changed.notify_all();
}

bool encodesInTime(const EncoderElement& encoder, const PictureEncoding& encoding, qint64 limitMs) {
  const auto trial = std::make_shared<Trial>();
  std::thread thread([trial, &encoder, encoding] {
    nameThread("kv-encoder-try");
    encodeBlack(trial, encoder, encoding);
  });
  MutexLock lock(trial->mutex);
  const bool ended = trial->changed.wait_for(lock, std::chrono::milliseconds(limitMs),
                                             [&trial]() REQUIRES(trial->mutex) { return trial->ended; });
  const bool works = ended && trial->works;
  lock.unlock();
  if (ended)
    thread.join();
  else
    thread.detach();
  return works;
}

}  // namespace

const EncoderElement& EncoderTrials::choose(KorviaShowEncodeAccelerator accelerator,
                                            const PictureEncoding& encoding) {
  if (!startGStreamer())
    return softwareEncoder();
  MutexLock lock(mutex_);
  const QDeadlineTimer deadline(kLimitMs);
  for (const EncoderElement& encoder : encodersOf(accelerator)) {
    if (!isInstalled(encoder))
      continue;
    const Case key{&encoder, {encoding.size.width, encoding.size.height}};
    auto known = works_.find(key);
    if (known == works_.end()) {
      if (deadline.remainingTime() < kShortestTrialMs)
        break;
      known = works_.emplace(key, encodesInTime(encoder, encoding, deadline.remainingTime())).first;
    }
    if (known->second)
      return encoder;
  }
  return softwareEncoder();
}

void EncoderTrials::noteFailure(const EncoderElement& encoder, const PictureEncoding& encoding) {
  MutexLock lock(mutex_);
  works_[{&encoder, {encoding.size.width, encoding.size.height}}] = false;
}

}  // namespace korvia

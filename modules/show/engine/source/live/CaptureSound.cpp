#include "CaptureSound.h"

#include <chrono>
#include <utility>

#include "CapturePipeline.h"
#include "engine/EngineLog.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

constexpr std::int64_t kRetryNs = 1'000'000'000;

}  // namespace

CaptureSound::CaptureSound(const CaptureSettings& settings, std::int64_t baseNs, LiveReceiver& receiver)
    : settings_(settings), baseNs_(baseNs), receiver_(receiver), thread_([this] { run(); }) {}

CaptureSound::~CaptureSound() {
  {
    MutexLock lock(mutex_);
    closing_ = true;
  }
  wake_.notify_one();
  thread_.join();
}

void CaptureSound::run() {
  nameThread("kv-source");
  runAsBatch();
  do {
    {
      MutexLock lock(mutex_);
      lost_ = false;
      reason_.clear();
    }
    LivePipeline pipeline({}, *this);
    QString reason;
    const bool opened = open(pipeline, reason);
    MutexLock lock(mutex_);
    if (opened)
      wake_.wait(lock, [this]() REQUIRES(mutex_) { return closing_ || lost_; });
    if (closing_)
      return;
    // What the device itself says is clearer.
    reason = reason_.isEmpty() ? reason : reason_;
    lock.unlock();
    noteFailure(reason);
  } while (waitFor(kRetryNs));
}

bool CaptureSound::open(LivePipeline& pipeline, QString& reason) {
  if (!pipeline.make(reason))
    return false;
  GstElement* source = settings_.makeSound(reason);
  if (!source)
    return false;
  addAndRelease(pipeline, source);
  // The clock of the pictures gives the stamps; no sample is left out for it.
  setIfTextFits(source, "provide-clock", "false");
  setIfTextFits(source, "slave-method", "re-timestamp");
  // Microseconds. The sound comes in short pieces, so that it need not wait long for the last one of a tick.
  setIfTextFits(source, "latency-time", "5000");
  setIfTextFits(source, "buffer-time", "100000");
  GstElement* filter = pipeline.add("capsfilter", reason);
  if (!filter)
    return false;
  GstCaps* caps = gst_caps_new_simple("audio/x-raw", "rate", G_TYPE_INT, settings_.sampleRate, nullptr);
  gst_caps_append(caps, gst_caps_new_empty_simple("audio/x-raw"));
  g_object_set(filter, "caps", caps, nullptr);
  gst_caps_unref(caps);
  if (!gst_element_link(source, filter) || !linkToPad(filter, pipeline.soundInlet())) {
    reason = QStringLiteral("sound device has no sound that can be heard");
    return false;
  }
  useCommonClock(pipeline, baseNs_);
  return pipeline.play(reason);
}

bool CaptureSound::waitFor(std::int64_t ns) {
  MutexLock lock(mutex_);
  return !wake_.wait_for(lock, std::chrono::nanoseconds(ns), [this]() REQUIRES(mutex_) { return closing_; });
}

// The same failure again and again is logged once.
void CaptureSound::noteFailure(const QString& reason) {
  if (std::exchange(loggedReason_, reason) != reason)
    qCWarning(logSource, "sound of %s is lost : %s", qUtf8Printable(settings_.name), qUtf8Printable(reason));
}

void CaptureSound::onSound(StereoSpan sound, std::int64_t stampNs, std::int64_t heldNs) {
  applySides(settings_.sides, sound);
  receiver_.onSound(sound, stampNs, heldNs);
}

void CaptureSound::onLost(const QString& reason) {
  {
    MutexLock lock(mutex_);
    lost_ = true;
    if (reason_.isEmpty())
      reason_ = reason;
  }
  wake_.notify_one();
}

}  // namespace korvia

// A live source whose devices are elements of GStreamer that stand in for a camera, a card and a microphone,
// pulled at the pace of a show.
#pragma once
#include <gst/gst.h>

#include <QtTest>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "../SourceRig.h"
#include "engine/HappensBefore.h"
#include "engine/source/GstInit.h"
#include "engine/source/live/DeviceInput.h"
#include "engine/source/live/DeviceSource.h"
#include "engine/source/live/LiveSource.h"

namespace korvia::test {

inline constexpr FrameSize kCaptureSize{320, 180};

/// A device that can be unplugged, that can hang, and that can deliver nothing.
class StandIn {
 public:
  explicit StandIn(QString description) : description_(std::move(description)) {}
  ~StandIn() { release(); }

  ElementMaker maker() {
    return [this](QString& reason) { return make(reason); };
  }
  int tries() const { return tries_; }
  void unplug() {
    plugged_ = false;
    std::lock_guard lock(mutex_);
    if (element_)
      GST_ELEMENT_ERROR(element_, RESOURCE, READ, ("Could not read from the device."), (nullptr));
  }
  void setPlugged(bool plugged) { plugged_ = plugged; }
  void setSilent(bool silent) { silent_ = silent; }
  void setGap(bool gap) { gap_ = gap; }
  /// The next buffer hangs until release().
  void hang() {
    std::lock_guard lock(mutex_);
    hangs_ = true;
  }
  bool isHanging() const { return hanging_; }
  void release() {
    {
      std::lock_guard lock(mutex_);
      hangs_ = false;
    }
    wake_.notify_all();
  }
  /// Where the stamps of the last element begin in the time of the system's clock.
  std::int64_t baseNs() {
    std::lock_guard lock(mutex_);
    return element_ ? static_cast<std::int64_t>(gst_element_get_base_time(element_)) : 0;
  }
  void forget() {
    std::lock_guard lock(mutex_);
    gst_clear_object(&element_);
  }

 private:
  GstElement* make(QString& reason) {
    ++tries_;
    if (!plugged_) {
      reason = QStringLiteral("camera is not plugged in");
      return nullptr;
    }
    GstElement* bin = gst_parse_bin_from_description(description_.toUtf8().constData(), TRUE, nullptr);
    if (!bin) {
      reason = QStringLiteral("the stand-in cannot be made");
      return nullptr;
    }
    gst_object_ref_sink(bin);
    GstPad* pad = gst_element_get_static_pad(bin, "src");
    gst_pad_add_probe(
        pad, GST_PAD_PROBE_TYPE_BUFFER,
        [](GstPad*, GstPadProbeInfo* info, gpointer self) {
          return static_cast<StandIn*>(self)->onBuffer(GST_PAD_PROBE_INFO_BUFFER(info));
        },
        this, nullptr);
    gst_object_unref(pad);
    std::lock_guard lock(mutex_);
    gst_clear_object(&element_);
    element_ = GST_ELEMENT(gst_object_ref(bin));
    return bin;
  }
  GstPadProbeReturn onBuffer(GstBuffer* buffer) {
    std::unique_lock lock(mutex_);
    hanging_ = hangs_;
    wake_.wait(lock, [this] { return !hangs_; });
    hanging_ = false;
    if (gap_)
      GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_GAP);
    return silent_ ? GST_PAD_PROBE_DROP : GST_PAD_PROBE_OK;
  }

  const QString description_;
  std::atomic<int> tries_{0};
  std::atomic<bool> plugged_{true};
  std::atomic<bool> silent_{false};
  std::atomic<bool> gap_{false};
  std::atomic<bool> hanging_{false};
  std::mutex mutex_;
  std::condition_variable wake_;
  bool hangs_ = false;             // guarded by mutex_
  GstElement* element_ = nullptr;  // guarded by mutex_
};

/// A moving picture, so that each is another frame.
inline QString cameraOf(int width = 320, int height = 180, const char* more = "") {
  return QStringLiteral(
             "videotestsrc is-live=true pattern=ball ! "
             "video/x-raw,format=I420,width=%1,height=%2,framerate=25/1 %3 ! identity")
      .arg(width)
      .arg(height)
      .arg(QLatin1String(more));
}

/// A tone on the left side only.
inline QString microphone() {
  return QStringLiteral(
      "audiotestsrc is-live=true samplesperbuffer=240 volume=0.5 ! audio/x-raw,rate=48000,channels=1 ! "
      "audioconvert mix-matrix=<<(float)1.0>,<(float)0.0>> ! "
      "audio/x-raw,channels=2,channel-mask=(bitmask)0x3 ! identity");
}

class CaptureRig {
 public:
  explicit CaptureRig(StandIn* camera, StandIn* sound = nullptr) {
    startGStreamer();
    settings.renderSize = kCaptureSize;
    settings.wanted = {kCaptureSize, {25, 1}};
    settings.name = QStringLiteral("stand-in");
    if (camera)
      settings.makePictures = camera->maker();
    if (sound)
      settings.makeSound = sound->maker();
    context_.renderSize = kCaptureSize;
    live = captureLiveSettings(context_.rate, settings.name);
  }
  ~CaptureRig() {
    close();
    source_.reset();
    waitForClosedSources(10'000);
  }

  void open() {
    open([settings = settings](LiveReceiver& receiver) {
      return std::make_unique<DeviceInput>(settings, receiver);
    });
  }
  void open(const LiveInputMaker& maker) {
    source_ =
        std::make_shared<LiveSource>(context_, tagKorviaShowSourceInfo(), tagKorviaFormatInfo(), live, maker);
    nextTick_ = std::chrono::steady_clock::now();
  }
  void close() {
    if (source_)
      source_->close();
  }
  LiveSource* operator->() { return source_.get(); }

  /// The next tick at its time.
  FrameRef tick() {
    std::this_thread::sleep_until(nextTick_);
    nextTick_ += std::chrono::milliseconds(40);
    FrameRef frame = source_->pullFrame(1);
    constexpr int kSamples = kSampleRate / 25;
    left.assign(kSamples, 0);
    right.assign(kSamples, 0);
    source_->pullSound({left.data(), right.data(), kSamples});
    if (frame && frame != last) {
      ++fresh;
      last = frame;
    }
    return frame;
  }
  template <typename Condition>
  bool tickUntil(Condition condition, double seconds = 15) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
      if (std::chrono::steady_clock::now() > end)
        return false;
      tick();
    }
    return true;
  }
  bool tickUntilState(KorviaShowPlayState state) {
    return tickUntil([&] { return source_->getPlayState() == state; });
  }
  QString reason() {
    tagKorviaSourceLinkState state;
    source_->getState(state);
    return state.reason;
  }
  static float peak(const std::vector<float>& side) { return *std::max_element(side.begin(), side.end()); }

  CaptureSettings settings;
  LiveSettings live;
  FrameRef last;
  int fresh = 0;  // ticks with another picture than before
  std::vector<float> left = std::vector<float>(1);
  std::vector<float> right = std::vector<float>(1);

 private:
  SourceContext context_;
  std::shared_ptr<LiveSource> source_;
  std::chrono::steady_clock::time_point nextTick_;
};

}  // namespace korvia::test

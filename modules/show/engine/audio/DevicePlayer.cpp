#include "DevicePlayer.h"

#include <array>
#include <chrono>
#include <utility>

#include "engine/HappensBefore.h"

namespace korvia {

namespace {

constexpr int kPairBytes = 2 * sizeof(float);
constexpr int kPullBytes = DevicePlayer::kPullSamples * kPairBytes;

GstCaps* soundCaps() {
  return gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING, "F32LE", "rate", G_TYPE_INT, kSampleRate,
                             "channels", G_TYPE_INT, 2, "layout", G_TYPE_STRING, "interleaved", nullptr);
}

std::int64_t nowNs() {
  return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

}  // namespace

DevicePlayer::DevicePlayer(DriftCorrector& sound, std::function<void()> wake)
    : sound_(sound), pipeline_(std::move(wake)) {}

DevicePlayer::~DevicePlayer() {
  pipeline_.stop();
  annotateHappensAfter(this);
}

bool DevicePlayer::start(GstElement* sink) {
  if (!pipeline_.create("device")) {
    gst_object_unref(sink);
    return false;
  }
  pipeline_.adopt(sink);
  GstElement* source = pipeline_.add("appsrc", "sound");
  GstElement* convert = pipeline_.add("audioconvert", "convert");
  GstElement* resample = pipeline_.add("audioresample", "resample");
  if (!source || !convert || !resample || !gst_element_link_many(source, convert, resample, sink, nullptr)) {
    pipeline_.setFailure(QStringLiteral("the device takes no sound of this kind"));
    return false;
  }
  GstCaps* caps = soundCaps();
  g_object_set(source, "caps", caps, "format", GST_FORMAT_TIME, "max-bytes", guint64{kPullBytes}, nullptr);
  gst_caps_unref(caps);
  GstAppSrcCallbacks callbacks{};
  callbacks.need_data = onNeedData;
  gst_app_src_set_callbacks(GST_APP_SRC(source), &callbacks, this, nullptr);
  annotateHappensBefore(this);
  return pipeline_.play();
}

void DevicePlayer::onNeedData(GstAppSrc* source, guint, gpointer self) {
  const HappensBeforeScope scope(self);
  static_cast<DevicePlayer*>(self)->feed(source);
}

void DevicePlayer::feed(GstAppSrc* source) {
  std::array<float, kPullSamples> left;
  std::array<float, kPullSamples> right;
  bool hasSound = false;
  if (silentPulls_ > 0)
    --silentPulls_;
  else
    hasSound = sound_.pull({left.data(), right.data(), kPullSamples}, nowNs());
  GstBuffer* buffer = gst_buffer_new_allocate(nullptr, kPullBytes, nullptr);
  GstMapInfo map;
  gst_buffer_map(buffer, &map, GST_MAP_WRITE);
  auto* pairs = reinterpret_cast<float*>(map.data);
  for (std::size_t i = 0; i < kPullSamples; ++i) {
    pairs[2 * i] = hasSound ? left[i] : 0;
    pairs[2 * i + 1] = hasSound ? right[i] : 0;
  }
  gst_buffer_unmap(buffer, &map);
  // The buffer has no time stamp: the sink plays it as soon as it can.
  gst_app_src_push_buffer(source, buffer);
}

}  // namespace korvia

#include "LivePipeline.h"

#include <gst/app/gstappsink.h>
#include <gst/audio/audio.h>

#include "LiveConnection.h"
#include "engine/EngineLog.h"
#include "engine/HappensBefore.h"
#include "engine/ThreadPriority.h"
#include "engine/source/ElementSetup.h"
#include "engine/source/GstInit.h"
#include "engine/source/runningTime.h"
#include "trace/SecretMask.h"

namespace korvia {

namespace {

/// What both sinks have in common: the clock of the source decides when something is shown.
void setUpSink(GstElement* sink, GstCaps* caps) {
  g_object_set(sink, "caps", caps, "sync", FALSE, "async", FALSE, "max-buffers", 1u, "enable-last-sample",
               FALSE, "qos", FALSE, nullptr);
  gst_caps_unref(caps);
}

/// Details of a source that is tried again and again would fill the log: once in half a minute, for all
/// sources.
bool mayLogDetail() {
  constexpr std::int64_t kQuietNs = 30'000'000'000;
  static std::atomic<std::int64_t> nextNs{0};
  const std::int64_t nowNs = LiveConnection::nowNs();
  std::int64_t dueNs = nextNs;
  return nowNs >= dueNs && nextNs.compare_exchange_strong(dueNs, nowNs + kQuietNs);
}

}  // namespace

LivePipeline::LivePipeline(FrameSize renderSize, LiveReceiver& receiver)
    : receiver_(receiver), frames_(renderSize) {}

LivePipeline::~LivePipeline() {
  if (!pipeline_)
    return;
  close();
  gst_element_set_state(pipeline_, GST_STATE_NULL);
  GstBus* bus = gst_element_get_bus(pipeline_);
  gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
  gst_object_unref(bus);
  gst_object_unref(pipeline_);
  annotateHappensAfter(this);
  annotateHappensAfter(&pictureOrder_);
  annotateHappensAfter(&soundOrder_);
}

bool LivePipeline::make(QString& reason) {
  if (!startGStreamer()) {
    reason = QStringLiteral("gstreamer does not start");
    return false;
  }
  pipeline_ = GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr)));
  GstBus* bus = gst_element_get_bus(pipeline_);
  gst_bus_set_sync_handler(bus, &LivePipeline::onMessage, this, nullptr);
  gst_object_unref(bus);
  return makePictureSink(reason) && makeSoundSink(reason);
}

GstElement* LivePipeline::add(const char* factory, QString& reason) {
  GstElement* element = gst_element_factory_make(factory, nullptr);
  if (!element)
    reason = QStringLiteral("gstreamer element %1 is missing").arg(QLatin1String(factory));
  else
    gst_bin_add(GST_BIN(pipeline_), element);
  return element;
}

bool LivePipeline::makePictureSink(QString& reason) {
  pictureSink_ = add("appsink", reason);
  if (!pictureSink_)
    return false;
  setUpSink(pictureSink_, gst_caps_new_empty_simple("video/x-raw"));
  GstAppSinkCallbacks callbacks = {};
  callbacks.new_sample = [](GstAppSink* sink, gpointer data) -> GstFlowReturn {
    auto* self = static_cast<LivePipeline*>(data);
    const HappensBeforeScope scope(&self->pictureOrder_);
    if (GstSample* sample = gst_app_sink_pull_sample(sink)) {
      self->onPicture(sample);
      gst_sample_unref(sample);
    }
    return GST_FLOW_OK;
  };
  callbacks.eos = [](GstAppSink*, gpointer data) {
    auto* self = static_cast<LivePipeline*>(data);
    const HappensBeforeScope scope(&self->pictureOrder_);
    self->lose(QStringLiteral("the stream has ended"));
  };
  gst_app_sink_set_callbacks(GST_APP_SINK(pictureSink_), &callbacks, this, nullptr);
  GstPad* pad = pictureInlet();
  offerPaddedPictures(pad);
  gst_object_unref(pad);
  return true;
}

bool LivePipeline::makeSoundSink(QString& reason) {
  soundConverter_ = add("audioconvert", reason);
  GstElement* resampler = add("audioresample", reason);
  GstElement* sink = add("appsink", reason);
  if (!soundConverter_ || !resampler || !sink ||
      !gst_element_link_many(soundConverter_, resampler, sink, nullptr))
    return false;
  GstCaps* caps = gst_caps_from_string("audio/x-raw, format=" GST_AUDIO_NE(F32) ", layout=interleaved");
  gst_caps_set_simple(caps, "rate", G_TYPE_INT, kSampleRate, nullptr);
  setUpSink(sink, caps);
  GstAppSinkCallbacks callbacks = {};
  callbacks.new_sample = [](GstAppSink* from, gpointer data) -> GstFlowReturn {
    auto* self = static_cast<LivePipeline*>(data);
    const HappensBeforeScope scope(&self->soundOrder_);
    if (GstSample* sample = gst_app_sink_pull_sample(from)) {
      self->onSound(sample);
      gst_sample_unref(sample);
    }
    return GST_FLOW_OK;
  };
  callbacks.eos = [](GstAppSink*, gpointer data) {
    auto* self = static_cast<LivePipeline*>(data);
    const HappensBeforeScope scope(&self->soundOrder_);
    if (!self->hasPicture_)
      self->lose(QStringLiteral("the stream has ended"));
  };
  gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, this, nullptr);
  return true;
}

bool LivePipeline::play(QString& reason) {
  annotateHappensBefore(this);
  annotateHappensBefore(&pictureOrder_);
  annotateHappensBefore(&soundOrder_);
  if (gst_element_set_state(pipeline_, GST_STATE_PLAYING) != GST_STATE_CHANGE_FAILURE)
    return true;
  // The elements that fail post why; the receiver knows it then.
  reason = QStringLiteral("cannot be opened");
  return false;
}

void LivePipeline::close() {
  closing_ = true;
  pacer_.close();
}

bool LivePipeline::pace(std::int64_t stampNs) {
  if (pacing_ == Pacing::ByStamps) {
    const StampPacer::Result result = pacer_.wait(stampNs);
    if (result == StampPacer::Result::Anew)
      receiver_.onStampsRestart();
  }
  return !closing_;
}

void LivePipeline::onPicture(GstSample* sample) {
  if (closing_)
    return;
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  hasPicture_ = true;
  FrameRef frame = frames_.make(sample);
  const std::int64_t stampNs =
      runningTimeNs(gst_sample_get_segment(sample), buffer ? GST_BUFFER_PTS(buffer) : GST_CLOCK_TIME_NONE)
          .value_or(LiveConnection::nowNs());
  if (frame && pace(stampNs))
    receiver_.onPicture(std::move(frame), stampNs);
}

void LivePipeline::onSound(GstSample* sample) {
  if (closing_)
    return;
  const auto sound = sounds_.make(sample);
  if (!sound)
    return;
  const std::int64_t stampNs = sound->runningNs.value_or(LiveConnection::nowNs());
  if (pace(stampNs))
    receiver_.onSound(sound->span, stampNs);
}

void LivePipeline::onError(GstMessage* message) {
  GError* error = nullptr;
  gchar* detail = nullptr;
  gst_message_parse_error(message, &error, &detail);
  if (mayLogDetail())
    qCDebug(logSource, "gstreamer : %s", qUtf8Printable(maskSecrets(QString::fromUtf8(detail))));
  lose(maskSecrets(QString::fromUtf8(error->message)).toLower());
  g_clear_error(&error);
  g_free(detail);
}

GstBusSyncReply LivePipeline::onMessage(GstBus*, GstMessage* message, gpointer data) {
  auto* self = static_cast<LivePipeline*>(data);
  const HappensBeforeScope scope(self);
  batchStreamingThread(message);
  if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR && !self->closing_)
    self->onError(message);
  // Nobody reads the bus, and messages would pile up there.
  gst_message_unref(message);
  return GST_BUS_DROP;
}

}  // namespace korvia

#include "LivePipeline.h"

#include <gst/app/gstappsink.h>
#include <gst/audio/audio.h>

#include <vector>

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

/// Readers tell nothing of use when they cannot connect.
QString reasonOf(const GError& error) {
  if (g_error_matches(&error, GST_STREAM_ERROR, GST_STREAM_ERROR_FAILED) ||
      g_error_matches(&error, GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_OPEN_READ_WRITE))
    return QStringLiteral("the server cannot be reached, or sends no stream");
  return maskSecrets(QString::fromUtf8(error.message)).toLower();
}

void addStamps(const GstSegment* segment, GstBuffer* buffer, std::vector<CodedHold::Stamps>& stamps) {
  const auto decodingNs = runningTimeNs(segment, GST_BUFFER_DTS(buffer));
  const auto presentationNs = runningTimeNs(segment, GST_BUFFER_PTS(buffer));
  if (decodingNs || presentationNs)
    stamps.push_back(
        {presentationNs ? *presentationNs : *decodingNs, decodingNs ? *decodingNs : *presentationNs});
}

/// The stamps of the data that pass; those without stamps are left out.
std::vector<CodedHold::Stamps> stampsOf(GstPad* pad, GstPadProbeInfo* info) {
  std::vector<CodedHold::Stamps> stamps;
  GstEvent* event = gst_pad_get_sticky_event(pad, GST_EVENT_SEGMENT, 0);
  if (!event)
    return stamps;
  const GstSegment* segment = nullptr;
  gst_event_parse_segment(event, &segment);
  GstBufferList* list =
      (info->type & GST_PAD_PROBE_TYPE_BUFFER_LIST) != 0 ? gst_pad_probe_info_get_buffer_list(info) : nullptr;
  for (guint i = 0; list && i < gst_buffer_list_length(list); ++i)
    addStamps(segment, gst_buffer_list_get(list, i), stamps);
  if (!list)
    addStamps(segment, gst_pad_probe_info_get_buffer(info), stamps);
  gst_event_unref(event);
  return stamps;
}

}  // namespace

LivePipeline::LivePipeline(FrameSize renderSize, LiveReceiver& receiver, std::int64_t latencyNs)
    : receiver_(receiver), hold_(latencyNs), pacer_(CodedHold::holdFor(latencyNs)), frames_(renderSize) {}

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
  annotateHappensAfter(&codedOrder_);
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
  annotateHappensBefore(&codedOrder_);
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
  hold_.close();
  pacer_.close();
}

void LivePipeline::holdBack(GstElement* queue) {
  annotateHappensBefore(&codedOrder_);
  constexpr auto kData =
      static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_BUFFER_LIST);
  GstPad* in = gst_element_get_static_pad(queue, "sink");
  gst_pad_add_probe(
      in, kData,
      [](GstPad* pad, GstPadProbeInfo* info, gpointer self) {
        static_cast<LivePipeline*>(self)->onCodedArrival(pad, info);
        return GST_PAD_PROBE_OK;
      },
      this, nullptr);
  gst_object_unref(in);
  GstPad* out = gst_element_get_static_pad(queue, "src");
  gst_pad_add_probe(
      out, kData,
      [](GstPad* pad, GstPadProbeInfo* info, gpointer self) {
        static_cast<LivePipeline*>(self)->onCodedDeparture(pad, info);
        return GST_PAD_PROBE_OK;
      },
      this, nullptr);
  gst_object_unref(out);
}

void LivePipeline::onCodedArrival(GstPad* pad, GstPadProbeInfo* info) {
  const HappensBeforeScope scope(&codedOrder_);
  // What comes as fast as it is taken is held back by its pace.
  if (closing_ || pacing_ == Pacing::ByStamps)
    return;
  const std::int64_t nowNs = LiveConnection::nowNs();
  for (const CodedHold::Stamps& stamps : stampsOf(pad, info))
    hold_.arrive(stamps, nowNs);
  receiver_.onHeldBack();
}

void LivePipeline::onCodedDeparture(GstPad* pad, GstPadProbeInfo* info) {
  const HappensBeforeScope scope(&codedOrder_);
  for (const CodedHold::Stamps& stamps : stampsOf(pad, info)) {
    if (!hold_.waitUntilDue(stamps, receiver_.shownNs(stamps.decodingNs)))
      return;
  }
}

std::optional<std::int64_t> LivePipeline::pace(std::int64_t stampNs) {
  const StampPacer::Paced paced = pacer_.wait(stampNs);
  if (paced.result == StampPacer::Result::Anew)
    receiver_.onStampsRestart();
  return closing_ ? std::nullopt : std::optional(paced.heldNs);
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
  if (!frame)
    return;
  const auto heldNs = pacing_ == Pacing::ByStamps ? pace(stampNs) : hold_.heldNs(stampNs);
  if (heldNs)
    receiver_.onPicture(std::move(frame), stampNs, *heldNs);
}

void LivePipeline::onSound(GstSample* sample) {
  if (closing_)
    return;
  const auto sound = sounds_.make(sample);
  if (!sound)
    return;
  const std::int64_t stampNs = sound->runningNs.value_or(LiveConnection::nowNs());
  const auto heldNs = pacing_ == Pacing::ByStamps ? pace(stampNs) : 0;
  if (heldNs)
    receiver_.onSound(sound->span, stampNs, *heldNs);
}

void LivePipeline::onError(GstMessage* message) {
  GError* error = nullptr;
  gchar* detail = nullptr;
  gst_message_parse_error(message, &error, &detail);
  if (mayLogDetail())
    qCDebug(logSource, "gstreamer : %s", qUtf8Printable(maskSecrets(QString::fromUtf8(detail))));
  lose(reasonOf(*error));
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

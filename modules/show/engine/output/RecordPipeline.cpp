#include "RecordPipeline.h"

#include <gst/video/video.h>

#include <QFile>
#include <utility>

#include "FrameBuffer.h"
#include "engine/Handover.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

// One that is being encoded waits in the encoder; one more keeps it busy.
constexpr qint64 kSourceBuffers = 2;
constexpr int kKeySeconds = 2;

// The cheapest settings of x264 that keep CABAC, 8x8 transforms, deblocking and adaptive quantisation: about
// a quarter of a core for 1080p25. Sub-pixel refinement at its lowest costs 0.05 dB and saves a sixth of the
// time. Without B-frames no picture is reordered, so every fragment stands for itself.
const RecordContainer::Property kEncoder[] = {
    {"pass", "cbr"},
    {"speed-preset", "superfast"},
    {"option-string", "subme=0:open-gop=0"},
    {"bframes", "0"},
    {"threads", "2"},
    {"sliced-threads", "false"},
    {"sync-lookahead", "0"},
    {"vbv-buf-capacity", "1000"},
};

GstCaps* rawCaps(const RecordSettings& settings) {
  return gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "I420", "width", G_TYPE_INT,
                             settings.size.width, "height", G_TYPE_INT, settings.size.height, "framerate",
                             GST_TYPE_FRACTION, static_cast<int>(settings.rate.numerator),
                             static_cast<int>(settings.rate.denominator), "pixel-aspect-ratio",
                             GST_TYPE_FRACTION, 1, 1, "interlace-mode", G_TYPE_STRING, "progressive",
                             "colorimetry", G_TYPE_STRING, GST_VIDEO_COLORIMETRY_BT709, "chroma-site",
                             G_TYPE_STRING, "mpeg2", nullptr);
}

template <typename Properties>
void setProperties(GstElement* element, const Properties& properties) {
  for (const RecordContainer::Property& property : properties)
    gst_util_set_object_arg(G_OBJECT(element), property.name, property.value);
}

qint64 sizeOf(const GstPadProbeInfo* info) {
  if (info->type & GST_PAD_PROBE_TYPE_BUFFER_LIST)
    return static_cast<qint64>(gst_buffer_list_calculate_size(GST_PAD_PROBE_INFO_BUFFER_LIST(info)));
  return static_cast<qint64>(gst_buffer_get_size(GST_PAD_PROBE_INFO_BUFFER(info)));
}

qint64 countOf(const GstPadProbeInfo* info) {
  if (info->type & GST_PAD_PROBE_TYPE_BUFFER_LIST)
    return gst_buffer_list_length(GST_PAD_PROBE_INFO_BUFFER_LIST(info));
  return 1;
}

void addProbe(GstElement* element, const char* padName, GstPadProbeCallback callback, gpointer self) {
  GstPad* pad = gst_element_get_static_pad(element, padName);
  const auto type = static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_BUFFER_LIST);
  gst_pad_add_probe(pad, type, callback, self, nullptr);
  gst_object_unref(pad);
}

}  // namespace

RecordPipeline::RecordPipeline(std::function<void()> wake) : wake_(std::move(wake)) {}

RecordPipeline::~RecordPipeline() {
  if (!pipeline_)
    return;
  gst_element_set_state(pipeline_, GST_STATE_NULL);
  GstBus* bus = gst_element_get_bus(pipeline_);
  gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
  gst_object_unref(bus);
  gst_object_unref(pipeline_);
  takeOver(this);
}

bool RecordPipeline::open(const RecordSettings& settings, const QString& fileName) {
  GError* error = nullptr;
  if (!gst_init_check(nullptr, nullptr, &error)) {
    setFailure(QString::fromUtf8(error ? error->message : "gstreamer does not start"));
    g_clear_error(&error);
    return false;
  }
  rate_ = settings.rate;
  pipeline_ = gst_pipeline_new("record");
  GstBus* bus = gst_element_get_bus(pipeline_);
  gst_bus_set_sync_handler(bus, onMessage, this, nullptr);
  gst_object_unref(bus);
  if (!link(settings, fileName))
    return false;
  handOver(this);
  if (gst_element_set_state(pipeline_, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
    setFailure(QStringLiteral("the recording does not start"));
    return false;
  }
  return true;
}

GstElement* RecordPipeline::add(const char* factory, const char* name) {
  GstElement* element = gst_element_factory_make(factory, name);
  if (element)
    gst_bin_add(GST_BIN(pipeline_), element);
  else
    setFailure(QStringLiteral("the element %1 is not installed").arg(QLatin1String(factory)));
  return element;
}

bool RecordPipeline::link(const RecordSettings& settings, const QString& fileName) {
  GstElement* source = add("appsrc", "frames");
  GstElement* encoder = add("x264enc", "encoder");
  GstElement* profile = add("capsfilter", "profile");
  GstElement* parser = add("h264parse", "parser");
  GstElement* muxer = add(settings.container.muxer, "muxer");
  GstElement* sink = add("filesink", "file");
  if (!source || !encoder || !profile || !parser || !muxer || !sink)
    return false;

  source_ = GST_APP_SRC(source);
  GstCaps* caps = rawCaps(settings);
  g_object_set(source, "format", GST_FORMAT_TIME, "caps", caps, nullptr);
  gst_caps_unref(caps);

  setProperties(encoder, kEncoder);
  const auto keyInterval =
      gst_util_uint64_scale_round(kKeySeconds, static_cast<guint64>(settings.rate.numerator),
                                  static_cast<guint64>(settings.rate.denominator));
  g_object_set(encoder, "bitrate", static_cast<guint>(settings.videoKbps), "key-int-max",
               static_cast<guint>(keyInterval), nullptr);
  caps = gst_caps_new_simple("video/x-h264", "profile", G_TYPE_STRING, "high", nullptr);
  g_object_set(profile, "caps", caps, nullptr);
  gst_caps_unref(caps);
  g_object_set(parser, "config-interval", settings.container.headerInterval, nullptr);
  setProperties(muxer, settings.container.properties);
  // Unbuffered, so that what is written is out of the process, whatever becomes of it.
  gst_util_set_object_arg(G_OBJECT(sink), "buffer-mode", "unbuffered");
  g_object_set(sink, "location", QFile::encodeName(fileName).constData(), "sync", FALSE, "enable-last-sample",
               FALSE, nullptr);

  if (!gst_element_link_many(source, encoder, profile, parser, muxer, sink, nullptr)) {
    setFailure(QStringLiteral("the parts of the recording do not fit together"));
    return false;
  }
  addProbe(source, "src", onTaken, this);
  addProbe(encoder, "src", onEncoded, this);
  addProbe(sink, "sink", onWritten, this);
  return true;
}

bool RecordPipeline::hasRoom() const {
  return framesFed_ - framesTaken_ < kSourceBuffers;
}

void RecordPipeline::feed(const FrameRef& frame, qint64 index) {
  GstBuffer* buffer = wrapFrame(frame);
  const qint64 beginNs = rate_.nsOf(index);
  GST_BUFFER_PTS(buffer) = static_cast<GstClockTime>(beginNs);
  // The difference of two stamps, so that rounding never adds up.
  GST_BUFFER_DURATION(buffer) = static_cast<GstClockTime>(rate_.nsOf(index + 1) - beginNs);
  ++framesFed_;
  gst_app_src_push_buffer(source_, buffer);
}

void RecordPipeline::endStream() {
  gst_app_src_end_of_stream(source_);
}

QString RecordPipeline::failure() const {
  std::lock_guard lock(mutex_);
  return failure_;
}

void RecordPipeline::setFailure(const QString& text) {
  std::lock_guard lock(mutex_);
  if (failure_.isEmpty())
    failure_ = text;
  failed_ = true;
}

GstBusSyncReply RecordPipeline::onMessage(GstBus*, GstMessage* message, gpointer self) {
  const HandoverScope scope(self);
  batchStreamingThread(message);
  auto* pipeline = static_cast<RecordPipeline*>(self);
  if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS) {
    pipeline->ended_ = true;
    pipeline->wake_();
  } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    pipeline->setFailure(QString::fromUtf8(error->message));
    g_error_free(error);
    pipeline->wake_();
  }
  // Nothing reads the bus.
  gst_message_unref(message);
  return GST_BUS_DROP;
}

GstPadProbeReturn RecordPipeline::onTaken(GstPad*, GstPadProbeInfo* info, gpointer self) {
  const HandoverScope scope(self);
  auto* pipeline = static_cast<RecordPipeline*>(self);
  pipeline->framesTaken_ += countOf(info);
  pipeline->wake_();
  return GST_PAD_PROBE_OK;
}

GstPadProbeReturn RecordPipeline::onEncoded(GstPad*, GstPadProbeInfo* info, gpointer self) {
  const HandoverScope scope(self);
  auto* pipeline = static_cast<RecordPipeline*>(self);
  pipeline->framesEncoded_ += countOf(info);
  pipeline->bytesEncoded_ += sizeOf(info);
  return GST_PAD_PROBE_OK;
}

GstPadProbeReturn RecordPipeline::onWritten(GstPad*, GstPadProbeInfo* info, gpointer self) {
  const HandoverScope scope(self);
  static_cast<RecordPipeline*>(self)->bytesWritten_ += sizeOf(info);
  return GST_PAD_PROBE_OK;
}

}  // namespace korvia

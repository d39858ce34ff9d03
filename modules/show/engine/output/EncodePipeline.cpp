#include "EncodePipeline.h"

#include <gst/video/video.h>

#include <utility>

#include "FrameExport.h"
#include "engine/HappensBefore.h"

namespace korvia {

namespace {

constexpr int kKeySeconds = 2;

// The cheapest settings of x264 that keep CABAC, 8x8 transforms, deblocking and adaptive quantisation: about
// a quarter of a core for 1080p25. Sub-pixel refinement at level 0 costs 0.05 dB and saves a sixth of the
// time. Without B-frames no picture is reordered, so each fragment can be decoded on its own. Scene cuts do
// not make key frames, so that all GOPs have the same length, which segments of a stream need.
constexpr ElementProperty kEncoder[] = {
    {"pass", "cbr"},
    {"speed-preset", "superfast"},
    {"option-string", "subme=0:open-gop=0:scenecut=0"},
    {"bframes", "0"},
    {"threads", "2"},
    {"sliced-threads", "false"},
    {"sync-lookahead", "0"},
    {"vbv-buf-capacity", "1000"},
};

GstCaps* rawCaps(const PictureEncoding& encoding) {
  return gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "I420", "width", G_TYPE_INT,
                             encoding.size.width, "height", G_TYPE_INT, encoding.size.height, "framerate",
                             GST_TYPE_FRACTION, static_cast<int>(encoding.rate.numerator),
                             static_cast<int>(encoding.rate.denominator), "pixel-aspect-ratio",
                             GST_TYPE_FRACTION, 1, 1, "interlace-mode", G_TYPE_STRING, "progressive",
                             "colorimetry", G_TYPE_STRING, GST_VIDEO_COLORIMETRY_BT709, "chroma-site",
                             G_TYPE_STRING, "mpeg2", nullptr);
}

guint keyInterval(const FrameRate& rate) {
  return static_cast<guint>(gst_util_uint64_scale_round(kKeySeconds, static_cast<guint64>(rate.numerator),
                                                        static_cast<guint64>(rate.denominator)));
}

/// The running time of a time stamp. The encoder shifts its stamps and its segment by 1000 hours.
qint64 runningTime(const GstSegment* segment, GstClockTime stamp) {
  guint64 ns = 0;
  const int sign = gst_segment_to_running_time_full(segment, GST_FORMAT_TIME, stamp, &ns);
  return sign * static_cast<qint64>(ns);
}

}  // namespace

EncodePipeline::EncodePipeline(std::function<void(const Track&, Packet)> onPacket, std::function<void()> wake)
    : onPacket_(std::move(onPacket)), pipeline_(std::move(wake)) {}

EncodePipeline::~EncodePipeline() {
  pipeline_.stop();
  annotateHappensAfter(this);
}

bool EncodePipeline::open(const PictureEncoding& encoding) {
  encoding_ = encoding;
  if (!pipeline_.create("encode") || !link())
    return false;
  annotateHappensBefore(this);
  return pipeline_.play();
}

bool EncodePipeline::link() {
  GstCaps* caps = rawCaps(encoding_);
  GstElement* source = inlet_.create("frames", caps);
  gst_caps_unref(caps);
  encoder_ = pipeline_.add("x264enc", "encoder");
  GstElement* sink = pipeline_.add("appsink", "packets");
  if (!source || !encoder_ || !sink)
    return false;

  OutputPipeline::setProperties(encoder_, kEncoder);
  g_object_set(encoder_, "bitrate", static_cast<guint>(encoding_.kbps), "key-int-max",
               keyInterval(encoding_.rate), nullptr);
  // Byte-stream format has the codec headers in each key frame, so that a target can join there.
  caps = gst_caps_new_simple("video/x-h264", "profile", G_TYPE_STRING, "high", "stream-format", G_TYPE_STRING,
                             "byte-stream", "alignment", G_TYPE_STRING, "au", nullptr);
  g_object_set(sink, "caps", caps, "sync", FALSE, "async", FALSE, "max-buffers", 1U, "enable-last-sample",
               FALSE, "qos", FALSE, nullptr);
  gst_caps_unref(caps);
  GstAppSinkCallbacks callbacks = {};
  callbacks.new_sample = onSample;
  gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, this, nullptr);

  if (gst_element_link_many(source, encoder_, sink, nullptr))
    return true;
  pipeline_.setFailure(QStringLiteral("the parts of the encoder do not fit together"));
  return false;
}

void EncodePipeline::feed(const FrameRef& frame, qint64 index) {
  GstBuffer* buffer = wrapFrame(frame);
  const qint64 beginNs = encoding_.rate.nsOf(index);
  GST_BUFFER_PTS(buffer) = static_cast<GstClockTime>(beginNs);
  // The difference of two time stamps, so that rounding errors do not add up.
  GST_BUFFER_DURATION(buffer) = static_cast<GstClockTime>(encoding_.rate.nsOf(index + 1) - beginNs);
  inlet_.push(buffer);
}

void EncodePipeline::requestKeyFrame() {
  gst_element_send_event(encoder_, gst_video_event_new_upstream_force_key_unit(GST_CLOCK_TIME_NONE, TRUE, 0));
}

const Track& EncodePipeline::trackFor(GstCaps* caps) {
  if (track_.caps.get() != caps)
    track_ = {Track::Kind::Picture, holdCaps(gst_caps_ref(caps)), encoding_.size, encoding_.rate,
              encoding_.kbps};
  return track_;
}

GstFlowReturn EncodePipeline::onSample(GstAppSink* sink, gpointer self) {
  const HappensBeforeScope scope(self);
  auto* pipeline = static_cast<EncodePipeline*>(self);
  GstSample* sample = gst_app_sink_pull_sample(sink);
  if (!sample)
    return GST_FLOW_EOS;
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  const GstSegment* segment = gst_sample_get_segment(sample);
  Packet packet;
  const Track& track = pipeline->trackFor(gst_sample_get_caps(sample));
  packet.data = holdBuffer(gst_buffer_ref(buffer));
  packet.bytes = static_cast<qint64>(gst_buffer_get_size(buffer));
  packet.ptsNs = runningTime(segment, GST_BUFFER_PTS(buffer));
  packet.dtsNs =
      GST_BUFFER_DTS_IS_VALID(buffer) ? runningTime(segment, GST_BUFFER_DTS(buffer)) : packet.ptsNs;
  packet.durationNs = static_cast<qint64>(GST_BUFFER_DURATION(buffer));
  packet.keyFrame = !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
  gst_sample_unref(sample);
  pipeline->onPacket_(track, std::move(packet));
  return GST_FLOW_OK;
}

}  // namespace korvia

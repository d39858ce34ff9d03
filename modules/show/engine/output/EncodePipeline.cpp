#include "EncodePipeline.h"

#include <gst/video/video.h>

#include <algorithm>
#include <string>
#include <utility>

#include "FrameExport.h"
#include "engine/HappensBefore.h"

namespace korvia {

namespace {

constexpr int kKeySeconds = 2;
// On a buffer whose frame has to become a key frame.
constexpr GstBufferFlags kKeyFrameFlag = GST_BUFFER_FLAG_MARKER;
// Of the rate control. A second never has more than its bits and about half a buffer, which stays within a
// tenth of the bitrate.
constexpr int kBufferMs = 150;

GstCaps* rawCaps(const PictureEncoding& encoding, EncoderElement::Input input) {
  return gst_caps_new_simple(
      "video/x-raw", "format", G_TYPE_STRING, input == EncoderElement::Input::Nv12 ? "NV12" : "I420", "width",
      G_TYPE_INT, encoding.size.width, "height", G_TYPE_INT, encoding.size.height, "framerate",
      GST_TYPE_FRACTION, static_cast<int>(encoding.rate.numerator),
      static_cast<int>(encoding.rate.denominator), "pixel-aspect-ratio", GST_TYPE_FRACTION, 1, 1,
      "interlace-mode", G_TYPE_STRING, "progressive", "colorimetry", G_TYPE_STRING,
      GST_VIDEO_COLORIMETRY_BT709, "chroma-site", G_TYPE_STRING, "mpeg2", nullptr);
}

guint64 valueOf(EncoderQuantity quantity, const PictureEncoding& encoding) {
  switch (quantity) {
    case EncoderQuantity::KeyInterval:
      return gst_util_uint64_scale_round(kKeySeconds, static_cast<guint64>(encoding.rate.numerator),
                                         static_cast<guint64>(encoding.rate.denominator));
    case EncoderQuantity::BufferKbit:
      return static_cast<guint64>(encoding.kbps) * kBufferMs / 1000;
    case EncoderQuantity::BufferMs:
      return kBufferMs;
    case EncoderQuantity::Kbps:
      break;
  }
  return static_cast<guint64>(encoding.kbps);
}

/// The running time of a time stamp. The encoder shifts its stamps and its segment by 1000 hours.
qint64 runningTime(const GstSegment* segment, GstClockTime stamp) {
  guint64 ns = 0;
  const int sign = gst_segment_to_running_time_full(segment, GST_FORMAT_TIME, stamp, &ns);
  return sign * static_cast<qint64>(ns);
}

}  // namespace

EncodePipeline::EncodePipeline(const EncoderElement& encoder,
                               std::function<void(const Track&, Packet)> onPacket, std::function<void()> wake)
    : element_(encoder), onPacket_(std::move(onPacket)), pipeline_(std::move(wake)) {}

EncodePipeline::~EncodePipeline() {
  pipeline_.stop();
  annotateHappensAfter(this);
}

bool EncodePipeline::open(const PictureEncoding& encoding, int generation) {
  encoding_ = encoding;
  generation_ = generation;
  keyInterval_ = static_cast<qint64>(valueOf(EncoderQuantity::KeyInterval, encoding));
  if (!pipeline_.create("encode") || !link())
    return false;
  annotateHappensBefore(this);
  return pipeline_.play();
}

bool EncodePipeline::link() {
  GstCaps* caps = rawCaps(encoding_, element_.input);
  GstElement* source = inlet_.create("frames", caps);
  gst_caps_unref(caps);
  if (element_.input == EncoderElement::Input::Nv12)
    nv12_ = std::make_unique<Nv12Export>(encoding_.size);
  encoder_ = pipeline_.add(element_.factory, "encoder");
  GstElement* end = encoder_;
  if (element_.headers == EncoderElement::Headers::Missing)
    end = pipeline_.add("h264parse", "headers");
  GstElement* sink = pipeline_.add("appsink", "packets");
  if (!source || !encoder_ || !end || !sink)
    return false;

  OutputPipeline::setProperties(encoder_, element_.properties);
  for (const EncoderQuantityProperty& property : element_.quantities)
    gst_util_set_object_arg(G_OBJECT(encoder_), property.name,
                            std::to_string(valueOf(property.quantity, encoding_)).c_str());
  caps = gst_caps_from_string(element_.caps);
  g_object_set(sink, "caps", caps, "sync", FALSE, "async", FALSE, "max-buffers", 1U, "enable-last-sample",
               FALSE, "qos", FALSE, nullptr);
  gst_caps_unref(caps);
  GstAppSinkCallbacks callbacks = {};
  callbacks.new_sample = onSample;
  gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, this, nullptr);
  if (end != encoder_)
    g_object_set(end, "config-interval", -1, nullptr);
  OutputPipeline::addProbe(encoder_, "sink", onFrame, encoder_);
  const bool encodes = end == encoder_ || gst_element_link(encoder_, end);
  if (encodes && gst_element_link(source, encoder_) && gst_element_link(end, sink))
    return true;
  pipeline_.setFailure(QStringLiteral("the parts of the encoder do not fit together"));
  return false;
}

void EncodePipeline::feed(const FedFrame& fed) {
  GstBuffer* buffer = bufferOf(fed.frame);
  if (!buffer) {
    pipeline_.setFailure(QStringLiteral("there is no memory for a picture"));
    return;
  }
  const qint64 beginNs = encoding_.rate.nsOf(fed.index);
  GST_BUFFER_PTS(buffer) = static_cast<GstClockTime>(beginNs);
  // The difference of two time stamps, so that rounding errors do not add up.
  GST_BUFFER_DURATION(buffer) = static_cast<GstClockTime>(encoding_.rate.nsOf(fed.index + 1) - beginNs);
  // Encoders count the frames that they get, so a GOP would last longer where frames were dropped.
  if (fed_ == 0 || fed.key == FedFrame::Key::Now || fed.index - keyIndex_ >= keyInterval_) {
    GST_BUFFER_FLAG_SET(buffer, kKeyFrameFlag);
    keyIndex_ = fed.index;
  }
  ++fed_;
  if (&element_ != &softwareEncoder()) {
    unfinished_.push_back(fed);
    forgetFinished();
  }
  inlet_.push(buffer);
}

GstBuffer* EncodePipeline::bufferOf(const FrameRef& frame) {
  return nv12_ ? nv12_->copy(*frame) : wrapFrame(frame);
}

void EncodePipeline::forgetFinished() {
  while (static_cast<qint64>(unfinished_.size()) > std::max<qint64>(0, fed_ - packets_))
    unfinished_.pop_front();
}

std::deque<FedFrame> EncodePipeline::stop() {
  pipeline_.stop();
  forgetFinished();
  return std::move(unfinished_);
}

GstPadProbeReturn EncodePipeline::onFrame(GstPad*, GstPadProbeInfo* info, gpointer encoder) {
  if (!GST_BUFFER_FLAG_IS_SET(GST_PAD_PROBE_INFO_BUFFER(info), kKeyFrameFlag))
    return GST_PAD_PROBE_OK;
  // The encoder applies it to the next frame that it takes, which is this one. Earlier, it would take a frame
  // that still waits. Time stamps of such an event are of no use, since x264enc shifts its stamps.
  GstPad* source = gst_element_get_static_pad(GST_ELEMENT(encoder), "src");
  gst_pad_send_event(source, gst_video_event_new_upstream_force_key_unit(GST_CLOCK_TIME_NONE, TRUE, 0));
  gst_object_unref(source);
  return GST_PAD_PROBE_OK;
}

const Track& EncodePipeline::trackFor(GstCaps* caps) {
  if (track_.caps.get() != caps)
    track_ = {Track::Kind::Picture, holdCaps(gst_caps_ref(caps)),
              encoding_.size,       encoding_.rate,
              encoding_.kbps,       generation_};
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
  ++pipeline->packets_;
  pipeline->onPacket_(track, std::move(packet));
  return GST_FLOW_OK;
}

}  // namespace korvia

#include "SoundEncodePipeline.h"

#include <utility>

#include "engine/HappensBefore.h"
#include "engine/audio/StereoSpan.h"

namespace korvia {

namespace {

// Each packet overlaps with the one before: the first samples come out of a decoder with the second packet.
constexpr qint64 kPrimingPackets = 1;

constexpr qint64 kSecondNs = 1'000'000'000;

qint64 nsOf(qint64 samples) {
  return samples / kSampleRate * kSecondNs + samples % kSampleRate * kSecondNs / kSampleRate;
}

GstCaps* rawCaps() {
  return gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING, "F32LE", "layout", G_TYPE_STRING,
                             "interleaved", "rate", G_TYPE_INT, kSampleRate, "channels", G_TYPE_INT, 2,
                             "channel-mask", GST_TYPE_BITMASK, guint64{3}, nullptr);
}

}  // namespace

SoundEncodePipeline::SoundEncodePipeline(std::function<void(const Track&, Packet)> onPacket,
                                         std::function<void()> wake)
    : onPacket_(std::move(onPacket)), pipeline_(std::move(wake)) {}

SoundEncodePipeline::~SoundEncodePipeline() {
  pipeline_.stop();
  annotateHappensAfter(this);
}

bool SoundEncodePipeline::open(int kbps, qint64 firstSample) {
  kbps_ = kbps;
  firstSample_ = firstSample;
  nextSample_ = firstSample;
  if (!pipeline_.create("encode-sound") || !link())
    return false;
  annotateHappensBefore(this);
  return pipeline_.play();
}

bool SoundEncodePipeline::link() {
  GstCaps* caps = rawCaps();
  GstElement* source = inlet_.create("samples", caps);
  gst_caps_unref(caps);
  GstElement* encoder = pipeline_.add("avenc_aac", "encoder");
  GstElement* sink = pipeline_.add("appsink", "packets");
  if (!source || !encoder || !sink)
    return false;
  g_object_set(encoder, "bitrate", static_cast<gint64>(kbps_) * 1000, nullptr);
  g_object_set(sink, "sync", FALSE, "async", FALSE, "max-buffers", 1U, "enable-last-sample", FALSE, "qos",
               FALSE, nullptr);
  GstAppSinkCallbacks callbacks = {};
  callbacks.new_sample = onSample;
  gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, this, nullptr);
  if (gst_element_link_many(source, encoder, sink, nullptr))
    return true;
  pipeline_.setFailure(QStringLiteral("the parts of the sound encoder do not fit together"));
  return false;
}

void SoundEncodePipeline::feed(std::span<const float> interleaved) {
  const qint64 samples = static_cast<qint64>(interleaved.size() / 2);
  if (samples == 0)
    return;
  GstBuffer* buffer = gst_buffer_new_memdup(interleaved.data(), interleaved.size_bytes());
  const qint64 beginNs = nsOf(nextSample_ - firstSample_);
  nextSample_ += samples;
  GST_BUFFER_PTS(buffer) = static_cast<GstClockTime>(beginNs);
  GST_BUFFER_DURATION(buffer) = static_cast<GstClockTime>(nsOf(nextSample_ - firstSample_) - beginNs);
  inlet_.push(buffer);
}

GstFlowReturn SoundEncodePipeline::onSample(GstAppSink* sink, gpointer self) {
  const HappensBeforeScope scope(self);
  auto* pipeline = static_cast<SoundEncodePipeline*>(self);
  GstSample* sample = gst_app_sink_pull_sample(sink);
  if (!sample)
    return GST_FLOW_EOS;
  const qint64 begin = (pipeline->packets_++ - kPrimingPackets) * kPacketSamples;
  // Without the packet of the priming the sound of the second one is faded in over its 21 ms, which spares a
  // container's means to leave samples out: not all have one, and not all players heed it.
  if (begin >= 0) {
    if (!pipeline->track_.caps)
      pipeline->track_ = {
          Track::Kind::Sound, holdCaps(gst_caps_ref(gst_sample_get_caps(sample))), {}, {}, pipeline->kbps_};
    GstBuffer* buffer = gst_sample_get_buffer(sample);
    Packet packet;
    packet.data = holdBuffer(gst_buffer_ref(buffer));
    packet.bytes = static_cast<qint64>(gst_buffer_get_size(buffer));
    packet.ptsNs = nsOf(pipeline->firstSample_ + begin);
    packet.dtsNs = packet.ptsNs;
    packet.durationNs = nsOf(pipeline->firstSample_ + begin + kPacketSamples) - packet.ptsNs;
    pipeline->onPacket_(pipeline->track_, std::move(packet));
  }
  gst_sample_unref(sample);
  return GST_FLOW_OK;
}

}  // namespace korvia

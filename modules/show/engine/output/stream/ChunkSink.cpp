#include "ChunkSink.h"

#include <gst/app/gstappsink.h>

#include <memory>
#include <utility>

#include "engine/HappensBefore.h"

namespace korvia {

namespace {

struct Taker {
  ChunkFormat format;
  std::function<void(const StreamChunk&)> onChunk;
};

void append(QByteArray& bytes, GstBuffer* buffer) {
  const int at = bytes.size();
  const auto count = gst_buffer_get_size(buffer);
  bytes.resize(at + static_cast<int>(count));
  gst_buffer_extract(buffer, 0, bytes.data() + at, count);
}

QByteArray headerOf(const GstCaps* caps) {
  QByteArray header;
  const GValue* list =
      caps ? gst_structure_get_value(gst_caps_get_structure(caps, 0), "streamheader") : nullptr;
  for (guint i = 0; list && i < gst_value_array_get_size(list); ++i)
    append(header, gst_value_get_buffer(gst_value_array_get_value(list, i)));
  return header;
}

/// The muxer of FLV marks its sound too, so its tags are looked at: a tag of video (9), a key frame (1) in
/// AVC (7), and a picture (1) and no header (Adobe Flash Video File Format 10.1, E.4.3).
bool isFlvKeyFrame(GstBuffer* buffer) {
  unsigned char tag[13] = {};
  return gst_buffer_extract(buffer, 0, tag, sizeof tag) == sizeof tag && tag[0] == 9 && tag[11] == 0x17 &&
         tag[12] == 1;
}

/// The muxer of MPEG-TS marks the packet in which a key frame begins.
bool isKeyFrame(ChunkFormat format, GstBuffer* buffer) {
  return format == ChunkFormat::Flv ? isFlvKeyFrame(buffer)
                                    : !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
}

/// What belongs before a key frame and comes with it becomes a chunk of its own.
void take(const Taker& taker, const QByteArray& header, GstBufferList* buffers) {
  StreamChunk chunk{header, {}, false};
  for (guint i = 0; i < gst_buffer_list_length(buffers); ++i) {
    GstBuffer* buffer = gst_buffer_list_get(buffers, i);
    if (isKeyFrame(taker.format, buffer)) {
      if (!chunk.data.isEmpty())
        taker.onChunk(chunk);
      chunk = {header, {}, true};
    }
    append(chunk.data, buffer);
  }
  taker.onChunk(chunk);
}

GstFlowReturn onSample(GstAppSink* sink, gpointer self) {
  const HappensBeforeScope scope(self);
  GstSample* sample = gst_app_sink_pull_sample(sink);
  if (!sample)
    return GST_FLOW_EOS;
  const auto& taker = *static_cast<const Taker*>(self);
  const QByteArray header = headerOf(gst_sample_get_caps(sample));
  if (GstBufferList* buffers = gst_sample_get_buffer_list(sample)) {
    take(taker, header, buffers);
  } else {
    GstBuffer* buffer = gst_sample_get_buffer(sample);
    StreamChunk chunk{header, {}, isKeyFrame(taker.format, buffer)};
    append(chunk.data, buffer);
    taker.onChunk(chunk);
  }
  gst_sample_unref(sample);
  return GST_FLOW_OK;
}

}  // namespace

MuxSink chunkSink(ChunkFormat format, std::function<void(const StreamChunk&)> onChunk) {
  MuxSink sink;
  sink.element = "appsink";
  sink.properties = {
      {"sync", "false"}, {"async", "false"}, {"enable-last-sample", "false"}, {"buffer-list", "true"}};
  // The pipeline is destroyed before the plan, which owns this function and with it the taker.
  sink.prepare = [taker = std::make_shared<Taker>(Taker{format, std::move(onChunk)})](GstElement* element) {
    GstAppSinkCallbacks callbacks = {};
    callbacks.new_sample = onSample;
    annotateHappensBefore(taker.get());
    gst_app_sink_set_callbacks(GST_APP_SINK(element), &callbacks, taker.get(), nullptr);
  };
  return sink;
}

}  // namespace korvia

#include "MuxPipeline.h"

#include <algorithm>
#include <utility>

#include "FragmentedFile.h"
#include "engine/HappensBefore.h"

namespace korvia {

namespace {

// A muxer takes no sound while it waits for the picture at the same time, which may be far away in a slow
// show.
constexpr qint64 kSoundBuffers = 200;

qint64 sizeOf(const GstPadProbeInfo* info) {
  if (info->type & GST_PAD_PROBE_TYPE_BUFFER_LIST)
    return static_cast<qint64>(gst_buffer_list_calculate_size(GST_PAD_PROBE_INFO_BUFFER_LIST(info)));
  return static_cast<qint64>(gst_buffer_get_size(GST_PAD_PROBE_INFO_BUFFER(info)));
}

bool isHeader(const GstPadProbeInfo* info) {
  return !(info->type & GST_PAD_PROBE_TYPE_BUFFER_LIST) &&
         GST_BUFFER_FLAG_IS_SET(GST_PAD_PROBE_INFO_BUFFER(info), GST_BUFFER_FLAG_HEADER);
}

}  // namespace

MuxPipeline::MuxPipeline(std::function<void()> wake) : pipeline_(std::move(wake)) {}

MuxPipeline::~MuxPipeline() {
  pipeline_.stop();
  annotateHappensAfter(this);
}

bool MuxPipeline::open(const TrackList& tracks, const RecordContainer& container, const MuxSink& sink) {
  if (!pipeline_.create("target") || !link(tracks, container, sink))
    return false;
  annotateHappensBefore(this);
  return pipeline_.play();
}

bool MuxPipeline::link(const TrackList& tracks, const RecordContainer& container, const MuxSink& sink) {
  GstElement* muxer = pipeline_.add(container.muxer, "muxer");
  GstElement* end = pipeline_.add(sink.element, "sink");
  if (!muxer || !end)
    return false;
  OutputPipeline::setProperties(muxer, container.properties);
  OutputPipeline::setProperties(end, sink.properties);
  if (sink.addressProperty)
    g_object_set(end, sink.addressProperty, sink.address.constData(), nullptr);
  if (sink.prepare)
    sink.prepare(end);
  OutputPipeline::addProbe(end, "sink", onWritten, this);
  if (container.boxes)
    OutputPipeline::addProbe(muxer, "src", onMuxed, nullptr);
  for (const Track& track : tracks) {
    if (!addTrack(track, container, muxer))
      return false;
  }
  if (gst_element_link(muxer, end))
    return true;
  pipeline_.setFailure(QStringLiteral("the parts of the target do not fit together"));
  return false;
}

bool MuxPipeline::addTrack(const Track& track, const RecordContainer& container, GstElement* muxer) {
  const bool isPicture = track.kind == Track::Kind::Picture;
  inlets_.push_back(isPicture ? std::make_unique<PipelineInlet>(pipeline_)
                              : std::make_unique<PipelineInlet>(pipeline_, kSoundBuffers));
  GstElement* source = inlets_.back()->create(isPicture ? "pictures" : "sound", track.caps.get());
  GstElement* parser = pipeline_.add(isPicture ? "h264parse" : "aacparse", nullptr);
  if (!source || !parser)
    return false;
  OutputPipeline::setProperties(source, container.inletProperties);
  if (isPicture)
    g_object_set(parser, "config-interval", container.headerInterval, nullptr);
  if (gst_element_link_many(source, parser, muxer, nullptr))
    return true;
  pipeline_.setFailure(QStringLiteral("the container does not take the track"));
  return false;
}

bool MuxPipeline::hasRoom() const {
  return std::all_of(inlets_.begin(), inlets_.end(), [](const auto& inlet) { return inlet->hasRoom(); });
}

void MuxPipeline::feed(const Packet& packet) {
  const auto track = static_cast<std::size_t>(packet.track);
  if (packet.endsTrack) {
    // Else the muxer would wait for it.
    inlets_[track]->end();
    return;
  }
  // A copy of the stamps alone: the data stay shared with the other targets.
  GstBuffer* buffer = gst_buffer_copy(packet.data.get());
  GST_BUFFER_PTS(buffer) = static_cast<GstClockTime>(packet.ptsNs);
  GST_BUFFER_DTS(buffer) = static_cast<GstClockTime>(packet.dtsNs);
  GST_BUFFER_DURATION(buffer) = static_cast<GstClockTime>(packet.durationNs);
  inlets_[track]->push(buffer);
}

void MuxPipeline::endStream() {
  for (const auto& inlet : inlets_)
    inlet->end();
}

GstPadProbeReturn MuxPipeline::onMuxed(GstPad*, GstPadProbeInfo* info, gpointer) {
  // Only an index is changed; the data of the packets are shared with other targets.
  if ((info->type & GST_PAD_PROBE_TYPE_BUFFER_LIST) ||
      gst_buffer_memcmp(GST_PAD_PROBE_INFO_BUFFER(info), 4, "moof", 4) != 0)
    return GST_PAD_PROBE_OK;
  GstBuffer* buffer = gst_buffer_make_writable(GST_PAD_PROBE_INFO_BUFFER(info));
  GST_PAD_PROBE_INFO_DATA(info) = buffer;
  GstMapInfo map;
  if (gst_buffer_map(buffer, &map, GST_MAP_READWRITE)) {
    addDefaultSizes(map.data, static_cast<qint64>(map.size));
    gst_buffer_unmap(buffer, &map);
  }
  return GST_PAD_PROBE_OK;
}

GstPadProbeReturn MuxPipeline::onWritten(GstPad*, GstPadProbeInfo* info, gpointer self) {
  const HappensBeforeScope scope(self);
  auto* mux = static_cast<MuxPipeline*>(self);
  const qint64 before = mux->bytesWritten_.fetch_add(sizeOf(info));
  if (mux->mediaWritten_)
    mux->bytesTaken_ = before;
  mux->mediaWritten_ = !isHeader(info);
  return GST_PAD_PROBE_OK;
}

}  // namespace korvia

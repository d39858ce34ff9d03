#include "StreamInput.h"

#include <algorithm>
#include <cstring>
#include <thread>

#include "engine/EngineLog.h"
#include "engine/HappensBefore.h"
#include "engine/source/ElementSetup.h"
#include "engine/source/StreamCorrections.h"

namespace korvia {

namespace {

// Slices of a picture are decoded at the same time. Frame threads would each add a picture of delay.
constexpr unsigned kMostDecoderThreads = 4;
constexpr int kSliceThreads = 2;  // of the flags "thread-type"

// What waits coded: the latency of the source, and a reserve that a burst needs. Ten seconds of 100 Mbit/s
// fit.
constexpr guint kMostCodedBytes = 128 * 1024 * 1024;
constexpr std::int64_t kMoreCodedNs = 2'000'000'000;

void setText(GstElement* element, const QByteArray& property, const QByteArray& value) {
  if (g_object_class_find_property(G_OBJECT_GET_CLASS(element), property.constData()))
    gst_util_set_object_arg(G_OBJECT(element), property.constData(), value.constData());
  else
    qCDebug(logSource, "element has no property %s", property.constData());
}

bool isOfType(GstElement* element, GstElementFactoryListType type) {
  GstElementFactory* factory = gst_element_get_factory(element);
  return factory && gst_element_factory_list_is_type(factory, type);
}

/// Whether the stream contains others, so that a demuxer has to take it apart.
bool isContainer(GstCaps* caps) {
  GList* demuxers = gst_element_factory_list_get_elements(
      GST_ELEMENT_FACTORY_TYPE_DEMUXER | GST_ELEMENT_FACTORY_TYPE_DEPAYLOADER, GST_RANK_MARGINAL);
  GList* fitting = gst_element_factory_list_filter(demuxers, caps, GST_PAD_SINK, FALSE);
  const bool contains = fitting != nullptr;
  gst_plugin_feature_list_free(fitting);
  gst_plugin_feature_list_free(demuxers);
  return contains;
}

}  // namespace

StreamInput::StreamInput(const StreamAddress& address, FrameSize renderSize, LiveReceiver& receiver)
    : address_(address), live_(renderSize, receiver, address.latencyNs) {}

StreamInput::~StreamInput() {
  live_.close();
  closeDecoders();
  for (GstElement* element : {source_, demuxer_}) {
    if (element)
      g_signal_handlers_disconnect_by_data(element, this);
  }
  if (live_.pipeline())
    g_signal_handlers_disconnect_by_data(live_.pipeline(), this);
}

bool StreamInput::start(QString& reason) {
  if (!live_.make(reason) || !makeSource(reason))
    return false;
  if (!address_.givesStreams && !makeDemuxer(reason))
    return false;
  g_signal_connect(live_.pipeline(), "deep-element-added",
                   G_CALLBACK(+[](GstBin*, GstBin*, GstElement* element, gpointer self) {
                     const HappensBeforeScope scope(self);
                     static_cast<StreamInput*>(self)->onElementAdded(element);
                   }),
                   this);
  annotateHappensBefore(this);
  return live_.play(reason);
}

bool StreamInput::makeSource(QString& reason) {
  source_ = live_.add(address_.element, reason);
  if (!source_)
    return false;
  for (const auto& [property, value] : address_.properties)
    setText(source_, property, value);
  if (address_.givesStreams)
    g_signal_connect(source_, "pad-added", G_CALLBACK(+[](GstElement*, GstPad* pad, gpointer self) {
                       const HappensBeforeScope scope(self);
                       static_cast<StreamInput*>(self)->onStream(pad);
                     }),
                     this);
  return true;
}

bool StreamInput::makeDemuxer(QString& reason) {
  demuxer_ = live_.add("decodebin", reason);
  if (!demuxer_)
    return false;
  g_signal_connect(demuxer_, "autoplug-continue",
                   G_CALLBACK(+[](GstElement*, GstPad*, GstCaps* caps, gpointer) -> gboolean {
                     return gst_caps_is_any(caps) || isContainer(caps);
                   }),
                   nullptr);
  avoidUnsafeElements(demuxer_);
  g_signal_connect(demuxer_, "pad-added", G_CALLBACK(+[](GstElement*, GstPad* pad, gpointer self) {
                     const HappensBeforeScope scope(self);
                     static_cast<StreamInput*>(self)->onStream(pad);
                   }),
                   this);
  if (gst_element_link(source_, demuxer_))
    return true;
  reason = QStringLiteral("reader does not link");
  return false;
}

void StreamInput::onElementAdded(GstElement* element) {
  GstElementFactory* factory = gst_element_get_factory(element);
  const char* name = factory ? gst_plugin_feature_get_name(GST_PLUGIN_FEATURE(factory)) : "";
  if (!std::strcmp(name, "h264parse") || !std::strcmp(name, "h265parse"))
    preferStreamColors(element);
  // Segments come at once, and the next ones when they have been shown.
  if (factory &&
      std::strstr(gst_element_factory_get_metadata(factory, GST_ELEMENT_METADATA_KLASS), "Adaptive"))
    live_.setPacing(LivePipeline::Pacing::ByStamps);
  if (!isOfType(element, GST_ELEMENT_FACTORY_TYPE_DECODER))
    return;
  const unsigned threads = std::clamp(std::thread::hardware_concurrency(), 1U, kMostDecoderThreads);
  setIfThere(element, "max-threads", static_cast<int>(threads));
  setIfThere(element, "thread-type", kSliceThreads);
  // What is decoded without its key frame is grey.
  setIfThere(element, "output-corrupt", 0);
}

StreamInput::Media StreamInput::mediaOf(GstCaps* caps) {
  if (!caps || gst_caps_is_empty(caps) || gst_caps_is_any(caps))
    return Media::None;
  const GstStructure* format = gst_caps_get_structure(caps, 0);
  const char* name = gst_structure_get_name(format);
  if (!std::strcmp(name, "application/x-rtp"))
    name = gst_structure_get_string(format, "media");
  if (!name)
    return Media::None;
  if (g_str_has_prefix(name, "video") || g_str_has_prefix(name, "image"))
    return Media::Picture;
  return g_str_has_prefix(name, "audio") ? Media::Sound : Media::None;
}

bool StreamInput::choose(Media media) {
  MutexLock lock(mutex_);
  if (closing_ || media == Media::None)
    return false;
  bool& taken = media == Media::Picture ? hasPicture_ : hasSound_;
  return !std::exchange(taken, true);
}

void StreamInput::onStream(GstPad* pad) {
  noteDuration();
  GstCaps* caps = capsOf(pad);
  const Media media = mediaOf(caps);
  if (caps)
    gst_caps_unref(caps);
  QString reason;
  if (!choose(media)) {
    linkNowhere(live_.pipeline(), pad);
  } else if (!decode(pad, media, reason)) {
    linkNowhere(live_.pipeline(), pad);
    if (media == Media::Picture)
      live_.lose(reason);
    else if (!reason.isEmpty())
      qCWarning(logSource, "sound of a stream cannot be decoded : %s", qUtf8Printable(reason));
  }
}

// A file on a server has a duration, and the server sends it as fast as it can.
void StreamInput::noteDuration() {
  gint64 durationNs = 0;
  if (demuxer_ && gst_element_query_duration(demuxer_, GST_FORMAT_TIME, &durationNs) && durationNs > 0)
    live_.setPacing(LivePipeline::Pacing::ByStamps);
}

bool StreamInput::decode(GstPad* pad, Media media, QString& reason) {
  GstElement* bin = gst_bin_new(nullptr);
  GstElement* gate = gst_element_factory_make("errorignore", nullptr);
  GstElement* queue = gst_element_factory_make("queue", nullptr);
  GstElement* decoder = gst_element_factory_make("decodebin", nullptr);
  if (!gate || !queue || !decoder) {
    reason = QStringLiteral("gstreamer element is missing");
    gst_clear_object(&gate);
    gst_clear_object(&queue);
    gst_clear_object(&decoder);
    gst_object_unref(bin);
    return false;
  }
  g_object_set(bin, "async-handling", TRUE, nullptr);
  // A decoder that fails would make the demuxer stop, and the other stream with it.
  g_object_set(gate, "ignore-notlinked", TRUE, "convert-to", GST_FLOW_OK, nullptr);
  g_object_set(queue, "max-size-buffers", 0u, "max-size-bytes", kMostCodedBytes, "max-size-time",
               static_cast<guint64>(address_.latencyNs + kMoreCodedNs), nullptr);
  gst_bin_add_many(GST_BIN(bin), gate, queue, decoder, nullptr);
  gst_element_link_many(gate, queue, decoder, nullptr);
  if (media == Media::Picture)
    live_.holdBack(queue);
  avoidUnsafeElements(decoder);
  g_signal_connect(decoder, "pad-added", G_CALLBACK(+[](GstElement*, GstPad* decoded, gpointer self) {
                     const HappensBeforeScope scope(self);
                     static_cast<StreamInput*>(self)->onDecoded(decoded);
                   }),
                   this);
  GstPad* input = gst_element_get_static_pad(gate, "sink");
  gst_element_add_pad(bin, gst_ghost_pad_new("sink", input));
  gst_object_unref(input);
  gst_bin_add(GST_BIN(live_.pipeline()), bin);
  {
    MutexLock lock(mutex_);
    if (closing_)
      return false;
    decoders_.push_back(bin);
  }
  gst_element_sync_state_with_parent(bin);
  GstPad* ghost = gst_element_get_static_pad(bin, "sink");
  if (gst_pad_link(pad, ghost) != GST_PAD_LINK_OK)
    reason = QStringLiteral("stream cannot be linked");
  gst_object_unref(ghost);
  return reason.isEmpty();
}

// A decoder gives its pad inside its bin, and the inlets are outside of it.
void StreamInput::onDecoded(GstPad* pad) {
  GstCaps* caps = capsOf(pad);
  const Media media = mediaOf(caps);
  if (caps)
    gst_caps_unref(caps);
  GstElement* decoder = gst_pad_get_parent_element(pad);
  GstElement* bin = decoder ? GST_ELEMENT(gst_element_get_parent(decoder)) : nullptr;
  GstPad* inlet = media == Media::Picture ? live_.pictureInlet()
                  : media == Media::Sound ? live_.soundInlet()
                                          : nullptr;
  if (bin && inlet && !gst_pad_is_linked(inlet)) {
    GstPad* ghost = gst_ghost_pad_new(nullptr, pad);
    gst_pad_set_active(ghost, TRUE);
    gst_element_add_pad(bin, ghost);
    if (gst_pad_link(ghost, inlet) != GST_PAD_LINK_OK)
      live_.lose(QStringLiteral("stream cannot be shown"));
  }
  gst_clear_object(&inlet);
  gst_clear_object(&bin);
  gst_clear_object(&decoder);
}

void StreamInput::closeDecoders() {
  std::vector<GstElement*> bins;
  {
    MutexLock lock(mutex_);
    closing_ = true;
    bins = decoders_;
  }
  for (GstElement* bin : bins)
    closeInlet(bin);
}

}  // namespace korvia

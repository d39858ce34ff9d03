#include "FilmPipeline.h"

#include <fcntl.h>
#include <gst/audio/audio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "CodedPictures.h"
#include "ElementSetup.h"
#include "GstInit.h"
#include "StreamCorrections.h"
#include "engine/EngineLog.h"
#include "engine/HappensBefore.h"
#include "engine/ThreadPriority.h"
#include "engine/audio/StereoSpan.h"

namespace korvia {

namespace {

// The limit of compressed data of each stream between demuxer and decoder. GStreamer holds only a few buffers
// of it, unless the sound lies far from its pictures in the file.
constexpr guint kMostQueuedBytes = 16 * 1024 * 1024;

GstElement* makeElement(const char* factory, QString& reason) {
  GstElement* element = gst_element_factory_make(factory, nullptr);
  if (!element)
    reason = QStringLiteral("gstreamer element %1 is missing").arg(QLatin1String(factory));
  return element;
}

bool isFromDemuxer(GstPad* pad) {
  GstElement* element = gst_pad_get_parent_element(pad);
  if (!element)
    return false;
  GstElementFactory* factory = gst_element_get_factory(element);
  const bool demuxer = factory && gst_element_factory_list_is_type(factory, GST_ELEMENT_FACTORY_TYPE_DEMUXER);
  gst_object_unref(element);
  return demuxer;
}

/// Whether the container marks the stream to be played when nobody chooses.
bool isDefaultStream(GstPad* pad) {
  GstEvent* event = gst_pad_get_sticky_event(pad, GST_EVENT_STREAM_START, 0);
  if (!event)
    return false;
  GstStreamFlags flags = GST_STREAM_FLAG_NONE;
  gst_event_parse_stream_flags(event, &flags);
  gst_event_unref(event);
  return flags & GST_STREAM_FLAG_SELECT;
}

/// Gives each buffer of a probe to `take`, as a sample.
template <typename Take>
void takeBuffers(GstPad* pad, GstPadProbeInfo* info, Take take) {
  GstCaps* caps = gst_pad_get_current_caps(pad);
  const GstSegment* segment = nullptr;
  GstEvent* event = gst_pad_get_sticky_event(pad, GST_EVENT_SEGMENT, 0);
  if (event)
    gst_event_parse_segment(event, &segment);
  const auto takeOne = [&](GstBuffer* buffer) {
    GstSample* sample = gst_sample_new(buffer, caps, segment, nullptr);
    take(sample);
    gst_sample_unref(sample);
  };
  if (info->type & GST_PAD_PROBE_TYPE_BUFFER_LIST) {
    GstBufferList* list = gst_pad_probe_info_get_buffer_list(info);
    for (guint i = 0; i < gst_buffer_list_length(list); ++i)
      takeOne(gst_buffer_list_get(list, i));
  } else {
    takeOne(gst_pad_probe_info_get_buffer(info));
  }
  gst_clear_event(&event);
  gst_clear_caps(&caps);
}

/// Makes the end of a chain; takes `caps`. Its data are taken before they reach it: the listener waits, and a
/// sink that waits holds a lock which its change from paused to playing needs, so that the pipeline would
/// never play. MediaClock paces the film, so the sink does not synchronise and needs no preroll.
GstElement* makeSink(GstCaps* caps, QString& reason) {
  GstElement* sink = makeElement("appsink", reason);
  if (sink)
    g_object_set(sink, "caps", caps, "sync", FALSE, "async", FALSE, "enable-last-sample", FALSE, "qos", FALSE,
                 nullptr);
  gst_caps_unref(caps);
  return sink;
}

constexpr int kBufferProbe = GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_BUFFER_LIST;
constexpr auto kSinkProbe = static_cast<GstPadProbeType>(kBufferProbe | GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM |
                                                         GST_PAD_PROBE_TYPE_EVENT_FLUSH);

/// Events that the sink would keep for a reader that it does not have.
bool wouldPileUp(GstEventType type) {
  return type == GST_EVENT_TAG || type == GST_EVENT_GAP;
}

/// Whether a decoder or parser is installed for the sound of this pad. decodebin would hold up the pictures
/// when there is none.
bool canDecode(GstPad* pad) {
  GstCaps* caps = capsOf(pad);
  GList* decoders =
      gst_element_factory_list_get_elements(GST_ELEMENT_FACTORY_TYPE_DECODABLE, GST_RANK_MARGINAL);
  GList* fitting = gst_element_factory_list_filter(decoders, caps, GST_PAD_SINK, FALSE);
  const bool raw = gst_structure_has_name(gst_caps_get_structure(caps, 0), "audio/x-raw");
  const bool can = raw || fitting;
  gst_plugin_feature_list_free(fitting);
  gst_plugin_feature_list_free(decoders);
  gst_caps_unref(caps);
  return can;
}

}  // namespace

FilmPipeline::FilmPipeline(FilmPipelineListener& listener) : listener_(listener) {}

FilmPipeline::~FilmPipeline() {
  for (GstPad* pad : takeSoundPads())
    gst_object_unref(pad);
  if (pipeline_) {
    stopSound();
    gst_element_set_state(pipeline_, GST_STATE_NULL);
    // GStreamer may keep the pipeline a little longer and removes its pads when it frees it, so the signals
    // are disconnected before.
    if (decoder_)
      g_signal_handlers_disconnect_by_data(decoder_, this);
    GstBus* bus = gst_element_get_bus(pipeline_);
    gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
    gst_object_unref(bus);
    gst_object_unref(pipeline_);
    annotateHappensAfter(this);
    annotateHappensAfter(&soundOrder_);
  }
  if (fd_ >= 0)
    ::close(fd_);
}

GstElement* FilmPipeline::makeReader(const QString& path, QString& reason) {
  const QByteArray name = QFile::encodeName(path);
  struct stat status;
  if (::stat(name.constData(), &status) != 0) {
    reason = QString::fromLocal8Bit(std::strerror(errno)).toLower();
    return nullptr;
  }
  if (S_ISDIR(status.st_mode)) {
    reason = QStringLiteral("is a folder");
    return nullptr;
  }
  regularFile_ = S_ISREG(status.st_mode);
  if (regularFile_ && status.st_size == 0) {
    reason = QStringLiteral("file is empty");
    return nullptr;
  }
  GstElement* reader = nullptr;
  if (regularFile_) {
    reader = makeElement("filesrc", reason);
    if (reader)
      g_object_set(reader, "location", name.constData(), nullptr);
    return reader;
  }
  // Without O_NONBLOCK the open would wait for a writer.
  fd_ = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd_ < 0) {
    reason = QString::fromLocal8Bit(std::strerror(errno)).toLower();
    return nullptr;
  }
  reader = makeElement("fdsrc", reason);
  if (reader)
    g_object_set(reader, "fd", fd_, nullptr);
  return reader;
}

bool FilmPipeline::makePictureChain(QString& reason) {
  pictureSink_ = makeSink(gst_caps_new_empty_simple("video/x-raw"), reason);
  if (!pictureSink_)
    return false;
  gst_bin_add(GST_BIN(pipeline_), pictureSink_);
  GstPad* pad = gst_element_get_static_pad(pictureSink_, "sink");
  gst_pad_add_probe(
      pad, kSinkProbe,
      [](GstPad* inlet, GstPadProbeInfo* info, gpointer self) {
        const HappensBeforeScope scope(self);
        return static_cast<FilmPipeline*>(self)->onSinkProbe(inlet, info);
      },
      this, nullptr);
  offerPaddedPictures(pad);
  gst_object_unref(pad);
  return true;
}

bool FilmPipeline::start(const QString& path, QString& reason) {
  if (!startGStreamer()) {
    reason = QStringLiteral("gstreamer does not start");
    return false;
  }
  GstElement* reader = makeReader(path, reason);
  if (!reader)
    return false;
  pipeline_ = GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr)));
  gst_bin_add(GST_BIN(pipeline_), reader);
  GstElement* decoder = makeElement("decodebin", reason);
  if (!decoder)
    return false;
  decoder_ = decoder;
  gst_bin_add(GST_BIN(pipeline_), decoder);
  g_object_set(decoder, "max-size-bytes", kMostQueuedBytes, nullptr);
  if (!makePictureChain(reason))
    return false;

  GstBus* bus = gst_element_get_bus(pipeline_);
  gst_bus_set_sync_handler(bus, &FilmPipeline::onMessage, this, nullptr);
  gst_object_unref(bus);
  g_signal_connect(decoder, "pad-added", G_CALLBACK(+[](GstElement*, GstPad* pad, gpointer self) {
                     const HappensBeforeScope scope(self);
                     static_cast<FilmPipeline*>(self)->onPadAdded(pad);
                   }),
                   this);
  g_signal_connect(decoder, "pad-removed", G_CALLBACK(+[](GstElement*, GstPad* pad, gpointer self) {
                     const HappensBeforeScope scope(self);
                     static_cast<FilmPipeline*>(self)->onPadRemoved(pad);
                   }),
                   this);
  g_signal_connect(decoder, "no-more-pads", G_CALLBACK(+[](GstElement*, gpointer self) {
                     const HappensBeforeScope scope(self);
                     static_cast<FilmPipeline*>(self)->onNoMorePads();
                   }),
                   this);
  g_signal_connect(decoder, "autoplug-continue",
                   G_CALLBACK(+[](GstElement*, GstPad* pad, GstCaps* caps, gpointer self) -> gboolean {
                     const HappensBeforeScope scope(self);
                     return static_cast<FilmPipeline*>(self)->wantsDecoding(pad, caps);
                   }),
                   this);
  avoidUnsafeElements(decoder);
  g_signal_connect(pipeline_, "deep-element-added",
                   G_CALLBACK(+[](GstBin*, GstBin*, GstElement* element, gpointer self) {
                     const HappensBeforeScope scope(self);
                     static_cast<FilmPipeline*>(self)->onElementAdded(element);
                   }),
                   this);
  if (!gst_element_link(reader, decoder)) {
    reason = QStringLiteral("reader does not link");
    return false;
  }
  annotateHappensBefore(this);
  annotateHappensBefore(&soundOrder_);
  if (gst_element_set_state(pipeline_, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
    reason = QStringLiteral("file cannot be read");
    return false;
  }
  return true;
}

bool FilmPipeline::seek(std::int64_t positionNs) {
  // Only one sink is asked, since each would send the seek to the demuxer.
  return pipeline_ &&
         gst_element_seek_simple(pictureSink_, GST_FORMAT_TIME,
                                 static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE),
                                 positionNs);
}

std::int64_t FilmPipeline::durationNs() const {
  gint64 duration = 0;
  if (!pipeline_ || !gst_element_query_duration(pipeline_, GST_FORMAT_TIME, &duration) || duration < 0)
    return 0;
  return duration;
}

bool FilmPipeline::wantsDecoding(GstPad* pad, GstCaps* caps) {
  const GstStructure* format =
      gst_caps_is_empty(caps) || gst_caps_is_any(caps) ? nullptr : gst_caps_get_structure(caps, 0);
  if (!format)
    return true;
  const char* name = gst_structure_get_name(format);
  if (!isFromDemuxer(pad) && !g_str_has_prefix(name, "audio/"))
    return true;
  if (!g_str_has_prefix(name, "video/") && !g_str_has_prefix(name, "image/"))
    return false;
  gchar* id = gst_pad_get_stream_id(pad);
  const std::string stream = id ? id : "";
  g_free(id);
  MutexLock lock(streamMutex_);
  // Streams that a demuxer adds after it has announced all of them replace the ones before: a transport
  // stream may change its streams.
  if (std::exchange(groupIsComplete_, false))
    pictureStream_.clear();
  if (pictureStream_.empty())
    pictureStream_ = stream;
  return pictureStream_ == stream;
}

void FilmPipeline::onElementAdded(GstElement* element) {
  GstElementFactory* factory = gst_element_get_factory(element);
  const char* name = factory ? gst_plugin_feature_get_name(GST_PLUGIN_FEATURE(factory)) : "";
  if (!std::strcmp(name, "h264parse") || !std::strcmp(name, "h265parse"))
    preferStreamColors(element);
  if (!std::strcmp(name, "matroskademux"))
    keepFirstSegments(element);
  if (!factory || !gst_element_factory_list_is_type(factory, GST_ELEMENT_FACTORY_TYPE_DECODER))
    return;
  thinWhatGoesInto(element);
  // Up to eight films share few cores. Threads of its own do not make a decoder faster there, and each costs
  // the delay and the memory of a picture.
  for (const char* property : {"max-threads", "n-threads", "threads"})
    setIfThere(element, property, 1);
}

void FilmPipeline::thinWhatGoesInto(GstElement* decoder) {
  struct Inlet {
    FilmPipelineListener& listener;
    CodedPictures pictures;
  };
  GstPad* pad = gst_element_get_static_pad(decoder, "sink");
  if (!pad)
    return;
  auto* inlet = new Inlet{listener_, {}};
  annotateHappensBefore(inlet);
  gst_pad_add_probe(
      pad, static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM | GST_PAD_PROBE_TYPE_BUFFER),
      [](GstPad*, GstPadProbeInfo* info, gpointer data) {
        // The pad lets one thread through at a time.
        const HappensBeforeScope scope(data);
        auto& [listener, pictures] = *static_cast<Inlet*>(data);
        if (info->type & GST_PAD_PROBE_TYPE_BUFFER) {
          const bool droppable = pictures.isDroppable(gst_pad_probe_info_get_buffer(info));
          return droppable && listener.decodeRate() == DecodeRate::Reduced ? GST_PAD_PROBE_DROP
                                                                           : GST_PAD_PROBE_OK;
        }
        GstEvent* event = gst_pad_probe_info_get_event(info);
        if (GST_EVENT_TYPE(event) == GST_EVENT_CAPS) {
          GstCaps* caps = nullptr;
          gst_event_parse_caps(event, &caps);
          pictures.setCaps(caps);
        }
        return GST_PAD_PROBE_OK;
      },
      inlet,
      [](gpointer data) {
        annotateHappensAfter(data);
        delete static_cast<Inlet*>(data);
      });
  gst_object_unref(pad);
}

void FilmPipeline::onPadAdded(GstPad* pad) {
  GstCaps* caps = capsOf(pad);
  const GstStructure* format =
      caps && !gst_caps_is_empty(caps) && !gst_caps_is_any(caps) ? gst_caps_get_structure(caps, 0) : nullptr;
  const char* name = format ? gst_structure_get_name(format) : "";
  if (g_str_has_prefix(name, "video/x-raw") && takePicture(pad))
    linkPicture(pad);
  else if (g_str_has_prefix(name, "audio/"))
    keepSoundPad(pad);
  else
    linkNowhere(pipeline_, pad);
  if (caps)
    gst_caps_unref(caps);
}

bool FilmPipeline::takePicture(GstPad* pad) {
  MutexLock lock(streamMutex_);
  if (picturePad_)
    return false;
  picturePad_ = pad;
  hasPicture_ = true;
  return true;
}

// A stream that changes its codec gets another decoder, and the pad of the old one is removed first.
void FilmPipeline::onPadRemoved(GstPad* pad) {
  MutexLock lock(streamMutex_);
  if (pad == picturePad_)
    picturePad_ = nullptr;
}

void FilmPipeline::linkPicture(GstPad* pad) {
  GstPad* sink = gst_element_get_static_pad(pictureSink_, "sink");
  // After a change of the codec the old decoder is still linked.
  if (GstPad* old = gst_pad_get_peer(sink)) {
    gst_pad_unlink(old, sink);
    gst_object_unref(old);
  }
  if (gst_pad_link(pad, sink) != GST_PAD_LINK_OK)
    fail(QStringLiteral("picture cannot be linked"));
  gst_object_unref(sink);
}

// Which sound is taken is known when all streams are.
void FilmPipeline::keepSoundPad(GstPad* pad) {
  MutexLock lock(streamMutex_);
  soundPads_.push_back(GST_PAD(gst_object_ref(pad)));
}

std::vector<GstPad*> FilmPipeline::takeSoundPads() {
  MutexLock lock(streamMutex_);
  return std::exchange(soundPads_, {});
}

void FilmPipeline::linkSounds(const std::vector<GstPad*>& pads) {
  const auto chosen = std::find_if(pads.begin(), pads.end(), isDefaultStream);
  GstPad* sound = pads.empty() ? nullptr : chosen == pads.end() ? pads.front() : *chosen;
  listener_.onSoundFound(sound != nullptr);
  QString reason;
  for (GstPad* pad : pads) {
    if (pad != sound || !linkSound(pad, reason))
      linkNowhere(pipeline_, pad);
  }
  if (!reason.isEmpty())
    failSound(reason);
}

GstElement* FilmPipeline::makeSoundSink(QString& reason) {
  GstCaps* caps = gst_caps_from_string("audio/x-raw, format=" GST_AUDIO_NE(F32) ", layout=interleaved");
  gst_caps_set_simple(caps, "rate", G_TYPE_INT, kSampleRate, nullptr);
  GstElement* sink = makeSink(caps, reason);
  if (!sink)
    return nullptr;
  GstPad* pad = gst_element_get_static_pad(sink, "sink");
  gst_pad_add_probe(
      pad, kSinkProbe,
      [](GstPad* inlet, GstPadProbeInfo* info, gpointer self) {
        const HappensBeforeScope scope(&static_cast<FilmPipeline*>(self)->soundOrder_);
        return static_cast<FilmPipeline*>(self)->onSoundProbe(inlet, info);
      },
      this, nullptr);
  gst_object_unref(pad);
  return sink;
}

bool FilmPipeline::linkSound(GstPad* pad, QString& reason) {
  if (!canDecode(pad)) {
    reason = QStringLiteral("no decoder for it");
    return false;
  }
  GstElement* bin = gst_bin_new(nullptr);
  // The pictures do not wait until the sound has found its decoder, which may take the whole film.
  g_object_set(bin, "async-handling", TRUE, nullptr);
  // A decoder that fails would make the demuxer stop, and the pictures with it.
  GstElement* gate = makeElement("errorignore", reason);
  GstElement* decoder = makeElement("decodebin", reason);
  GstElement* converter = makeElement("audioconvert", reason);
  GstElement* resampler = makeElement("audioresample", reason);
  GstElement* sink = makeSoundSink(reason);
  for (GstElement* element : {gate, decoder, converter, resampler, sink}) {
    if (element)
      gst_bin_add(GST_BIN(bin), element);
  }
  if (!reason.isEmpty() || !gst_element_link_many(converter, resampler, sink, nullptr) ||
      !gst_element_link(gate, decoder)) {
    gst_object_unref(bin);
    return false;
  }
  g_object_set(gate, "ignore-notlinked", TRUE, "convert-to", GST_FLOW_OK, nullptr);
  g_signal_connect(decoder, "pad-added", G_CALLBACK(+[](GstElement*, GstPad* decoded, gpointer to) {
                     GstPad* input = gst_element_get_static_pad(GST_ELEMENT(to), "sink");
                     if (!gst_pad_is_linked(input))
                       gst_pad_link(decoded, input);
                     gst_object_unref(input);
                   }),
                   converter);
  GstPad* input = gst_element_get_static_pad(gate, "sink");
  gst_element_add_pad(bin, gst_ghost_pad_new("sink", input));
  gst_object_unref(input);
  gst_bin_add(GST_BIN(pipeline_), bin);
  gst_element_sync_state_with_parent(bin);
  {
    MutexLock lock(streamMutex_);
    if (closing_)
      return false;
    soundBins_.push_back(bin);
  }
  GstPad* ghost = gst_element_get_static_pad(bin, "sink");
  if (gst_pad_link(pad, ghost) != GST_PAD_LINK_OK)
    reason = QStringLiteral("sound cannot be linked");
  gst_object_unref(ghost);
  return reason.isEmpty();
}

GstPadProbeReturn FilmPipeline::onSinkProbe(GstPad* pad, GstPadProbeInfo* info) {
  if (info->type & kBufferProbe) {
    takeBuffers(pad, info, [this](GstSample* sample) { listener_.onPicture(sample); });
    return GST_PAD_PROBE_DROP;
  }
  GstEvent* event = gst_pad_probe_info_get_event(info);
  switch (GST_EVENT_TYPE(event)) {
    case GST_EVENT_FLUSH_START:
      listener_.onFlushStart();
      break;
    case GST_EVENT_FLUSH_STOP:
      listener_.onFlushStop();
      break;
    case GST_EVENT_EOS:
      listener_.onEndOfStream();
      break;
    case GST_EVENT_TAG: {
      GstTagList* tags = nullptr;
      gst_event_parse_tag(event, &tags);
      gchar* orientation = nullptr;
      if (gst_tag_list_get_string(tags, GST_TAG_IMAGE_ORIENTATION, &orientation)) {
        listener_.onOrientation(orientation);
        g_free(orientation);
      }
      break;
    }
    default:
      break;
  }
  return wouldPileUp(GST_EVENT_TYPE(event)) ? GST_PAD_PROBE_DROP : GST_PAD_PROBE_OK;
}

void FilmPipeline::stopSound() {
  std::vector<GstElement*> bins;
  {
    MutexLock lock(streamMutex_);
    closing_ = true;
    bins = soundBins_;
  }
  for (GstElement* bin : bins)
    closeInlet(bin);
}

GstPadProbeReturn FilmPipeline::onSoundProbe(GstPad* pad, GstPadProbeInfo* info) {
  if (info->type & kBufferProbe) {
    takeBuffers(pad, info, [this](GstSample* sample) { listener_.onSound(sample); });
    return GST_PAD_PROBE_DROP;
  }
  if (closing_)
    return GST_PAD_PROBE_OK;
  const GstEventType type = GST_EVENT_TYPE(gst_pad_probe_info_get_event(info));
  if (type == GST_EVENT_FLUSH_START)
    listener_.onSoundFlushStart();
  else if (type == GST_EVENT_FLUSH_STOP)
    listener_.onSoundFlushStop();
  else if (type == GST_EVENT_EOS)
    listener_.onSoundEnd();
  return wouldPileUp(type) ? GST_PAD_PROBE_DROP : GST_PAD_PROBE_OK;
}

void FilmPipeline::failSound(const QString& reason) {
  // A film that has failed as a whole takes its sound with it.
  if (!failed_ && !soundFailed_.exchange(true))
    listener_.onSoundFailure(reason);
}

void FilmPipeline::fail(const QString& reason) {
  if (!failed_.exchange(true))
    listener_.onFailure(reason);
}

void FilmPipeline::onNoMorePads() {
  {
    MutexLock lock(streamMutex_);
    groupIsComplete_ = true;
  }
  const std::vector<GstPad*> sounds = takeSoundPads();
  if (hasPicture_)
    linkSounds(sounds);
  for (GstPad* pad : sounds)
    gst_object_unref(pad);
  if (!hasPicture_)
    fail(QStringLiteral("no picture in the file"));
}

bool FilmPipeline::isInSound(GstObject* element) {
  MutexLock lock(streamMutex_);
  return std::any_of(soundBins_.begin(), soundBins_.end(), [element](GstElement* bin) {
    return gst_object_has_as_ancestor(element, GST_OBJECT(bin));
  });
}

void FilmPipeline::onError(GstMessage* message) {
  GError* error = nullptr;
  gchar* detail = nullptr;
  gst_message_parse_error(message, &error, &detail);
  qCDebug(logSource, "gstreamer : %s", detail ? detail : "");
  const QString reason = QString::fromUtf8(error->message).toLower();
  if (isInSound(GST_MESSAGE_SRC(message)))
    failSound(reason);
  else
    fail(reason);
  g_clear_error(&error);
  g_free(detail);
}

GstBusSyncReply FilmPipeline::onMessage(GstBus*, GstMessage* message, gpointer self) {
  const HappensBeforeScope scope(self);
  batchStreamingThread(message);
  if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_DURATION_CHANGED)
    static_cast<FilmPipeline*>(self)->listener_.onDurationChanged();
  if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
    static_cast<FilmPipeline*>(self)->onError(message);
  // Nobody reads the bus, and messages would pile up there.
  gst_message_unref(message);
  return GST_BUS_DROP;
}

}  // namespace korvia

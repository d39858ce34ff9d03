#include "ReadBack.h"

#include <fcntl.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "FragmentedFile.h"

namespace korvia {

namespace {

constexpr qint64 kChunkBytes = 256 * 1024;
// Muxers write headers and sound without a picture, and a key frame may have several megabytes, but nothing
// is as large as this.
constexpr qint64 kBytesWithoutPicture = 8 * 1024 * 1024;
// Pictures. The encoders make a key frame every 2 s; times would be longer where frames were dropped.
constexpr int kLongestGop = 300;

/// Makes a pad from which the caller pushes into the element; the caller's thread runs what is behind it.
GstPad* makeOutlet(GstElement* element, GstCaps* caps, GstFormat format) {
  GstPad* outlet = gst_pad_new("outlet", GST_PAD_SRC);
  gst_pad_set_active(outlet, TRUE);
  GstPad* inlet = gst_element_get_static_pad(element, "sink");
  gst_pad_link(outlet, inlet);
  gst_object_unref(inlet);
  gst_pad_push_event(outlet, gst_event_new_stream_start("read-back"));
  if (caps)
    gst_pad_push_event(outlet, gst_event_new_caps(caps));
  GstSegment segment;
  gst_segment_init(&segment, format);
  gst_pad_push_event(outlet, gst_event_new_segment(&segment));
  return outlet;
}

void dropOutlet(GstPad* outlet) {
  gst_pad_set_active(outlet, FALSE);
  gst_object_unref(outlet);
}

/// Whether an access unit of H.264 in byte-stream format has an IDR slice. Fragments of mp4 mark other
/// pictures as key frames too.
bool isKeyFrame(GstBuffer* buffer) {
  constexpr std::uint8_t kStartCode[] = {0, 0, 1};
  constexpr int kTypeMask = 0x1f;
  constexpr int kIdrSlice = 5;
  GstMapInfo map;
  if (GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT) ||
      !gst_buffer_map(buffer, &map, GST_MAP_READ))
    return false;
  const std::uint8_t* const end = map.data + map.size;
  bool found = false;
  for (const std::uint8_t* at = map.data; !found;) {
    at = std::search(at, end, std::begin(kStartCode), std::end(kStartCode));
    if (end - at <= std::ssize(kStartCode))
      break;
    at += std::ssize(kStartCode);
    found = (*at & kTypeMask) == kIdrSlice;
  }
  gst_buffer_unmap(buffer, &map);
  return found;
}

bool decodes(GstSample* keyFrame) {
  OutputPipeline decoding([] {});
  if (!decoding.create("key-frame"))
    return false;
  GstElement* decoder = decoding.add("avdec_h264", "decoder");
  GstElement* sink = decoding.add("appsink", "pictures");
  if (!decoder || !sink)
    return false;
  g_object_set(decoder, "output-corrupt", FALSE, "max-threads", 1, nullptr);
  // The picture is taken after the end of the stream, which must not wait for that.
  g_object_set(sink, "sync", FALSE, "async", FALSE, "enable-last-sample", FALSE, "wait-on-eos", FALSE,
               nullptr);
  if (!gst_element_link(decoder, sink) || !decoding.play())
    return false;
  GstPad* outlet = makeOutlet(decoder, gst_sample_get_caps(keyFrame), GST_FORMAT_TIME);
  gst_pad_push(outlet, gst_buffer_copy(gst_sample_get_buffer(keyFrame)));
  gst_pad_push_event(outlet, gst_event_new_eos());
  GstSample* picture = gst_app_sink_try_pull_sample(GST_APP_SINK(sink), 0);
  decoding.stop();
  dropOutlet(outlet);
  if (!picture)
    return false;
  gst_sample_unref(picture);
  return true;
}

}  // namespace

ReadBack::ReadBack(QString fileName, const RecordContainer& container)
    : fileName_(std::move(fileName)),
      demuxer_(container.demuxer),
      order_(container.boxes ? Order::Fragments : Order::AsWritten),
      pipeline_([] {}) {}

ReadBack::~ReadBack() {
  pipeline_.stop();
  if (outlet_)
    dropOutlet(outlet_);
}

bool ReadBack::fail(const QString& reason) {
  failure_ = reason;
  return false;
}

bool ReadBack::open() {
  if (!pipeline_.create("read-back"))
    return fail(pipeline_.failure());
  GstElement* demuxer = pipeline_.add(demuxer_, "demuxer");
  parser_ = pipeline_.add("h264parse", "parser");
  GstElement* sink = pipeline_.add("appsink", "pictures");
  if (!demuxer || !parser_ || !sink)
    return fail(pipeline_.failure());
  // Every key frame comes with its headers, so that a decoder can begin with it.
  g_object_set(parser_, "config-interval", -1, nullptr);
  GstCaps* caps = gst_caps_new_simple("video/x-h264", "stream-format", G_TYPE_STRING, "byte-stream",
                                      "alignment", G_TYPE_STRING, "au", nullptr);
  g_object_set(sink, "caps", caps, "sync", FALSE, "async", FALSE, "enable-last-sample", FALSE, nullptr);
  gst_caps_unref(caps);
  GstAppSinkCallbacks callbacks = {};
  callbacks.new_sample = onSample;
  gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, this, nullptr);
  g_signal_connect(demuxer, "pad-added", G_CALLBACK(onPadAdded), this);
  if (!gst_element_link(parser_, sink) || !pipeline_.play())
    return fail(QStringLiteral("the reader does not start"));
  outlet_ = makeOutlet(demuxer, nullptr, GST_FORMAT_BYTES);
  return true;
}

void ReadBack::onPadAdded(GstElement*, GstPad* pad, gpointer self) {
  GstCaps* caps = gst_pad_query_caps(pad, nullptr);
  const bool isPicture =
      !gst_caps_is_empty(caps) && gst_structure_has_name(gst_caps_get_structure(caps, 0), "video/x-h264");
  gst_caps_unref(caps);
  // The sound is demuxed and goes no further.
  if (!isPicture)
    return;
  GstPad* inlet = gst_element_get_static_pad(static_cast<ReadBack*>(self)->parser_, "sink");
  gst_pad_link(pad, inlet);
  gst_object_unref(inlet);
}

GstFlowReturn ReadBack::onSample(GstAppSink* sink, gpointer self) {
  if (GstSample* sample = gst_app_sink_pull_sample(sink))
    static_cast<ReadBack*>(self)->note({sample, [](GstSample* old) { gst_sample_unref(old); }});
  return GST_FLOW_OK;
}

void ReadBack::note(SampleRef sample) {
  GstBuffer* buffer = gst_sample_get_buffer(sample.get());
  if (!GST_BUFFER_PTS_IS_VALID(buffer))
    return;
  const auto beginNs = static_cast<qint64>(GST_BUFFER_PTS(buffer));
  const auto durationNs =
      GST_BUFFER_DURATION_IS_VALID(buffer) ? static_cast<qint64>(GST_BUFFER_DURATION(buffer)) : 0;
  if (firstNs_ < 0)
    firstNs_ = beginNs;
  endNs_ = std::max(endNs_, beginNs + durationNs);
  ++sinceKey_;
  if (!isKeyFrame(buffer))
    return;
  keyFrame_ = std::move(sample);
  sinceKey_ = 0;
}

bool ReadBack::read() {
  QFile file(fileName_);
  if (!file.open(QIODevice::ReadOnly))
    return fail(QStringLiteral("the file cannot be read"));
  if (file.size() < bytesRead_)
    return fail(QStringLiteral("the file has become shorter"));
  // What is already on the disk is read from there and not from memory.
  posix_fadvise(file.handle(), bytesRead_, 0, POSIX_FADV_DONTNEED);
  if (!(order_ == Order::Fragments ? readFragments(file) : readChunks(file)))
    return false;
  return file.error() == QFile::NoError || fail(QStringLiteral("the file cannot be read"));
}

bool ReadBack::readChunks(QFile& file) {
  file.seek(bytesRead_);
  for (QByteArray chunk = file.read(kChunkBytes); !chunk.isEmpty(); chunk = file.read(kChunkBytes)) {
    bytesRead_ += chunk.size();
    if (!push(chunk))
      return false;
  }
  return true;
}

bool ReadBack::readFragments(QFile& file) {
  while (true) {
    const std::optional<QByteArray> fragment = readFragment(file, bytesRead_);
    if (!fragment)
      return fail(QStringLiteral("the container is damaged"));
    if (fragment->isEmpty())
      return true;
    if (!push(*fragment))
      return false;
  }
}

bool ReadBack::push(const QByteArray& bytes) {
  const qint64 lengthBefore = lengthNs();
  const auto size = static_cast<gsize>(bytes.size());
  const GstFlowReturn taken = gst_pad_push(outlet_, gst_buffer_new_memdup(bytes.constData(), size));
  if (pipeline_.hasFailed())
    return fail(pipeline_.failure());
  if (taken < GST_FLOW_OK && taken != GST_FLOW_NOT_LINKED)
    return fail(QStringLiteral("the container is damaged"));
  if (lengthNs() > lengthBefore)
    bytesAtPicture_ = bytesRead_;
  else if (bytesRead_ - bytesAtPicture_ > kBytesWithoutPicture)
    return fail(QStringLiteral("no pictures are found in it"));
  return sinceKey_ <= kLongestGop || fail(QStringLiteral("no key frames are found in it"));
}

bool ReadBack::readOn() {
  if ((!outlet_ && !open()) || !read())
    return false;
  const SampleRef keyFrame = std::exchange(keyFrame_, nullptr);
  return !keyFrame || decodes(keyFrame.get()) || fail(QStringLiteral("its pictures cannot be decoded"));
}

}  // namespace korvia

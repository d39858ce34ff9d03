#include "ClipWriter.h"

#include <gst/app/gstappsrc.h>

#include <QFile>
#include <QLoggingCategory>
#include <algorithm>

#include "DemoFormat.h"
#include "Mp4Times.h"

Q_LOGGING_CATEGORY(lcClip, "korvia.democlip")

namespace korvia {

namespace {

// The number of threads is fixed, because the encoder's output depends on it. The queues of the sound have no
// bound, because all sound is pushed before the first picture.
constexpr char kPipeline[] =
    "mp4mux name=mux faststart=true ! filesink name=file "
    "appsrc name=pictures format=time block=true max-bytes=33177600 "
    "! videoconvert ! video/x-raw,format=I420,colorimetry=bt709 "
    "! x264enc pass=qual quantizer=25 vbv-buf-capacity=2000 bitrate=1100 speed-preset=veryfast threads=3 "
    "key-int-max=50 bframes=2 "
    "! video/x-h264,profile=high ! h264parse ! queue max-size-bytes=0 max-size-buffers=0 max-size-time=0 "
    "! mux. "
    "appsrc name=sound format=time max-bytes=0 "
    "! audioconvert ! avenc_aac bitrate=112000 ! aacparse "
    "! queue max-size-bytes=0 max-size-buffers=0 max-size-time=0 ! mux.";

constexpr GstClockTime kEndTimeout = 120 * GST_SECOND;
constexpr int kEncoderDelaySamples = 1024;
constexpr int kSoundBlockSamples = kDemoSampleRate / kDemoFramesPerSecond;

GstCaps* pictureCaps() {
  return gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "BGRx", "width", G_TYPE_INT, kDemoWidth,
                             "height", G_TYPE_INT, kDemoHeight, "framerate", GST_TYPE_FRACTION,
                             kDemoFramesPerSecond, 1, "pixel-aspect-ratio", GST_TYPE_FRACTION, 1, 1, nullptr);
}

GstCaps* soundCaps() {
  return gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING, "F32LE", "layout", G_TYPE_STRING,
                             "interleaved", "rate", G_TYPE_INT, kDemoSampleRate, "channels", G_TYPE_INT,
                             kDemoChannels, nullptr);
}

void setCaps(GstElement* source, GstCaps* caps) {
  gst_app_src_set_caps(GST_APP_SRC(source), caps);
  gst_caps_unref(caps);
}

bool push(GstElement* source, const void* data, gsize bytes, GstClockTime time, GstClockTime duration) {
  GstBuffer* buffer = gst_buffer_new_allocate(nullptr, bytes, nullptr);
  if (buffer == nullptr) {
    return false;
  }
  gst_buffer_fill(buffer, 0, data, bytes);
  GST_BUFFER_PTS(buffer) = time;
  GST_BUFFER_DURATION(buffer) = duration;
  return gst_app_src_push_buffer(GST_APP_SRC(source), buffer) == GST_FLOW_OK;
}

bool clearTimes(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadWrite)) {
    qCWarning(lcClip, "failed to read back file : %s", qPrintable(path));
    return false;
  }
  QByteArray bytes = file.readAll();
  clearMp4Times(bytes);
  return file.seek(0) && file.write(bytes) == bytes.size();
}

}  // namespace

ClipWriter::~ClipWriter() {
  tearDown();
}

int ClipWriter::soundDelaySamples() {
  return kEncoderDelaySamples;
}

bool ClipWriter::open(const QString& path) {
  GError* error = nullptr;
  pipeline_ = gst_parse_launch_full(kPipeline, nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &error);
  if (pipeline_ == nullptr) {
    qCWarning(lcClip, "failed to set up encoders : %s", error != nullptr ? error->message : "unknown");
    g_clear_error(&error);
    return false;
  }
  path_ = path;
  pictures_ = gst_bin_get_by_name(GST_BIN(pipeline_), "pictures");
  sound_ = gst_bin_get_by_name(GST_BIN(pipeline_), "sound");
  setCaps(pictures_, pictureCaps());
  setCaps(sound_, soundCaps());

  GstElement* file = gst_bin_get_by_name(GST_BIN(pipeline_), "file");
  g_object_set(file, "location", QFile::encodeName(path).constData(), nullptr);
  gst_object_unref(file);
  if (gst_element_set_state(pipeline_, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
    qCWarning(lcClip, "failed to write file : %s", qPrintable(path));
    return false;
  }
  return true;
}

bool ClipWriter::writeSound(const std::vector<float>& samples) {
  const int total = static_cast<int>(samples.size()) / kDemoChannels;
  for (int first = 0; first < total; first += kSoundBlockSamples) {
    const int count = std::min(kSoundBlockSamples, total - first);
    const GstClockTime begin = gst_util_uint64_scale_int(first, GST_SECOND, kDemoSampleRate);
    const GstClockTime end = gst_util_uint64_scale_int(first + count, GST_SECOND, kDemoSampleRate);
    const float* block = samples.data() + static_cast<std::size_t>(first) * kDemoChannels;
    if (!push(sound_, block, sizeof(float) * kDemoChannels * static_cast<gsize>(count), begin, end - begin)) {
      return false;
    }
  }
  return gst_app_src_end_of_stream(GST_APP_SRC(sound_)) == GST_FLOW_OK;
}

bool ClipWriter::writePicture(const QImage& picture) {
  const GstClockTime begin = gst_util_uint64_scale_int(written_, GST_SECOND, kDemoFramesPerSecond);
  const GstClockTime end = gst_util_uint64_scale_int(written_ + 1, GST_SECOND, kDemoFramesPerSecond);
  ++written_;
  return push(pictures_, picture.constBits(), static_cast<gsize>(picture.sizeInBytes()), begin, end - begin);
}

bool ClipWriter::close() {
  if (pipeline_ == nullptr) {
    return false;
  }
  gst_app_src_end_of_stream(GST_APP_SRC(pictures_));
  const bool ended = waitForEnd();
  tearDown();
  return ended && clearTimes(path_);
}

bool ClipWriter::waitForEnd() {
  GstBus* bus = gst_element_get_bus(pipeline_);
  GstMessage* message = gst_bus_timed_pop_filtered(
      bus, kEndTimeout, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
  gst_object_unref(bus);
  if (message == nullptr) {
    qCWarning(lcClip, "encoders did not end in time");
    return false;
  }
  const bool ended = GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
  if (!ended) {
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    qCWarning(lcClip, "failed to encode : %s", error->message);
    g_error_free(error);
  }
  gst_message_unref(message);
  return ended;
}

void ClipWriter::tearDown() {
  if (pipeline_ == nullptr) {
    return;
  }
  gst_element_set_state(pipeline_, GST_STATE_NULL);
  g_clear_pointer(&pictures_, gst_object_unref);
  g_clear_pointer(&sound_, gst_object_unref);
  g_clear_pointer(&pipeline_, gst_object_unref);
}

}  // namespace korvia

#include "DevicePipeline.h"

#include <gst/video/video.h>

#include <utility>

#include "SdiModes.h"
#include "engine/audio/SampleTime.h"
#include "engine/frame/FrameFit.h"
#include "engine/output/FrameExport.h"

namespace korvia {

namespace {

// Both get the pictures when they are on air, and show them at once.
constexpr ElementProperty kLiveSink[] = {
    {"sync", "false"}, {"qos", "false"}, {"enable-last-sample", "false"}};

// The card plays by the time stamps and its own clock. With QoS a late picture would make the converters drop
// the next ones too.
constexpr ElementProperty kCardSink[] = {{"sync", "true"}, {"qos", "false"}, {"enable-last-sample", "false"}};

GstCaps* pictureCaps(const DevicePicture& picture) {
  return gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "I420", "width", G_TYPE_INT,
                             picture.size.width, "height", G_TYPE_INT, picture.size.height, "framerate",
                             GST_TYPE_FRACTION, static_cast<int>(picture.rate.numerator),
                             static_cast<int>(picture.rate.denominator), "pixel-aspect-ratio",
                             GST_TYPE_FRACTION, picture.pixelAspectNumerator, picture.pixelAspectDenominator,
                             "interlace-mode", G_TYPE_STRING, "progressive", "colorimetry", G_TYPE_STRING,
                             GST_VIDEO_COLORIMETRY_BT709, "chroma-site", G_TYPE_STRING, "mpeg2", nullptr);
}

GstCaps* soundCaps() {
  return gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING, "F32LE", "rate", G_TYPE_INT, kSampleRate,
                             "channels", G_TYPE_INT, 2, "layout", G_TYPE_STRING, "interleaved", nullptr);
}

/// Makes a filter pass what cards and NDI take without another conversion.
void packTo(GstElement* filter, const char* colorimetry) {
  GstCaps* caps = gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "UYVY", "colorimetry",
                                      G_TYPE_STRING, colorimetry, nullptr);
  g_object_set(filter, "caps", caps, nullptr);
  gst_caps_unref(caps);
}

void setTime(GstBuffer* buffer, qint64 beginNs, qint64 endNs) {
  GST_BUFFER_PTS(buffer) = static_cast<GstClockTime>(beginNs);
  // The difference of two time stamps, so that rounding errors do not add up.
  GST_BUFFER_DURATION(buffer) = static_cast<GstClockTime>(endNs - beginNs);
}

}  // namespace

DevicePipeline::DevicePipeline(const DeviceSettings& settings, const DevicePicture& picture,
                               std::function<void()> wake)
    : settings_(settings), picture_(picture), scaled_(picture.size), pipeline_(std::move(wake)) {}

DevicePipeline::~DevicePipeline() {
  pipeline_.stop();
}

QString DevicePipeline::failure() const {
  if (!closedReason_.isEmpty())
    return closedReason_;
  return pipeline_.hasFailed() ? pipeline_.failure() : QStringLiteral("the device has ended");
}

bool DevicePipeline::open(const QString& path) {
  if (!pipeline_.create("device"))
    return false;
  bool linked = false;
  switch (settings_.kind) {
    case DeviceKind::VirtualCamera:
      linked = linkVirtualCamera(path);
      break;
    case DeviceKind::Ndi:
      linked = linkNdi();
      break;
    case DeviceKind::Sdi:
      linked = linkSdi();
      break;
  }
  if (!linked) {
    // A reason that is known already stays.
    pipeline_.setFailure(QStringLiteral("the device takes no pictures of this kind"));
    return false;
  }
  return pipeline_.play();
}

/// v4l2loopback has no sound: programs that use the camera get it from a sound device.
bool DevicePipeline::linkVirtualCamera(const QString& path) {
  if (!isInstalled("v4l2sink", QStringLiteral("the GStreamer plugin video4linux2 is not installed")))
    return false;
  GstElement* convert = addPictures();
  GstElement* sink = pipeline_.add("v4l2sink", "device");
  if (!convert || !sink)
    return false;
  OutputPipeline::setProperties(sink, kLiveSink);
  g_object_set(sink, "device", qUtf8Printable(path), nullptr);
  return openSink(sink, QStringLiteral("the device %1 does not open").arg(path)) &&
         gst_element_link(convert, sink);
}

bool DevicePipeline::linkNdi() {
  const QString missing = QStringLiteral("the GStreamer plugin ndi is not installed");
  if (!isInstalled("ndisinkcombiner", missing) || !isInstalled("ndisink", missing))
    return false;
  GstElement* convert = addPictures();
  GstElement* packed = pipeline_.add("capsfilter", "packed");
  GstElement* sound = addSound();
  GstElement* combiner = pipeline_.add("ndisinkcombiner", "combiner");
  GstElement* sink = pipeline_.add("ndisink", "device");
  if (!convert || !packed || !sound || !combiner || !sink)
    return false;
  packTo(packed, GST_VIDEO_COLORIMETRY_BT709);
  OutputPipeline::setProperties(sink, kLiveSink);
  g_object_set(sink, "ndi-name", qUtf8Printable(settings_.ndiName), nullptr);
  return openSink(sink, QStringLiteral("NDI does not start")) && gst_element_link(convert, packed) &&
         gst_element_link_pads(packed, "src", combiner, "video") &&
         gst_element_link_pads(sound, "src", combiner, "audio") && gst_element_link(combiner, sink);
}

bool DevicePipeline::linkSdi() {
  const QString missing = QStringLiteral("the GStreamer plugin decklink is not installed");
  if (!isInstalled("decklinkvideosink", missing) || !isInstalled("decklinkaudiosink", missing))
    return false;
  GstElement* convert = addPictures();
  GstElement* packed = pipeline_.add("capsfilter", "packed");
  GstElement* scan = pipeline_.add("capssetter", "scan");
  GstElement* sound = addSound();
  GstElement* pictureSink = pipeline_.add("decklinkvideosink", "device");
  GstElement* soundSink = pipeline_.add("decklinkaudiosink", "sound-device");
  if (!convert || !packed || !scan || !sound || !pictureSink || !soundSink)
    return false;
  packTo(packed, sdiColorimetry(picture_));
  // Both fields are of the same frame. They are declared behind the converter, which would treat the chroma
  // of each field by itself.
  GstCaps* caps =
      gst_caps_new_simple("video/x-raw", "interlace-mode", G_TYPE_STRING,
                          picture_.scan == Scan::Interlaced ? "interleaved" : "progressive", nullptr);
  g_object_set(scan, "caps", caps, nullptr);
  gst_caps_unref(caps);
  for (GstElement* sink : {pictureSink, soundSink}) {
    OutputPipeline::setProperties(sink, kCardSink);
    g_object_set(sink, "device-number", settings_.cardIndex, nullptr);
  }
  if (const std::optional<SdiMode> mode = findSdiMode(settings_.sdiFormat))
    gst_util_set_object_arg(G_OBJECT(pictureSink), "mode", mode->nick);
  const QString closed =
      QStringLiteral("the card %1 does not open, it has no driver or is in use").arg(settings_.cardIndex);
  return openSink(pictureSink, closed) && openSink(soundSink, closed) &&
         gst_element_link_many(convert, packed, scan, pictureSink, nullptr) &&
         gst_element_link(sound, soundSink);
}

/// Adds where pictures come in and returns what converts them.
GstElement* DevicePipeline::addPictures() {
  GstCaps* caps = pictureCaps(picture_);
  GstElement* source = pictures_.create("pictures", caps);
  gst_caps_unref(caps);
  GstElement* convert = pipeline_.add("videoconvert", "convert");
  if (!source || !convert || !gst_element_link(source, convert))
    return nullptr;
  // Costs time only where the colours of the device are not those of program.
  gst_util_set_object_arg(G_OBJECT(convert), "primaries-mode", "fast");
  return convert;
}

GstElement* DevicePipeline::addSound() {
  GstCaps* caps = soundCaps();
  GstElement* source = sound_.create("sound", caps);
  gst_caps_unref(caps);
  GstElement* convert = pipeline_.add("audioconvert", "convert-sound");
  return source && convert && gst_element_link(source, convert) ? convert : nullptr;
}

bool DevicePipeline::isInstalled(const char* element, const QString& missing) {
  GstElementFactory* factory = gst_element_factory_find(element);
  if (!factory) {
    pipeline_.setFailure(missing);
    return false;
  }
  gst_object_unref(factory);
  return true;
}

bool DevicePipeline::openSink(GstElement* sink, const QString& failure) {
  if (gst_element_set_state(sink, GST_STATE_READY) != GST_STATE_CHANGE_FAILURE)
    return true;
  // An element that does not tell why gets an error that says just this.
  if (pipeline_.resourceError() == 0)
    closedReason_ = failure;
  return false;
}

void DevicePipeline::pushPicture(const FrameRef& frame, qint64 index) {
  FrameRef picture = frame ? frame : scaled_.black();
  if (picture->size() != picture_.size || picture_.pixelAspectNumerator != picture_.pixelAspectDenominator) {
    MutableFrame target = scaled_.acquire();
    // The pixels of program are square.
    const FrameRect rect = fitRect(picture->size(), picture_.pixelAspectDenominator,
                                   picture_.pixelAspectNumerator, picture_.size);
    fitFrame(*picture, rect, *target);
    picture = std::move(target).publish();
  }
  GstBuffer* buffer = wrapFrame(picture);
  setTime(buffer, picture_.rate.nsOf(index), picture_.rate.nsOf(index + 1));
  pictures_.push(buffer);
}

void DevicePipeline::pushSound(const float* pairs, int samples, qint64 first) {
  const std::size_t bytes = 2 * sizeof(float) * static_cast<std::size_t>(samples);
  GstBuffer* buffer = gst_buffer_new_allocate(nullptr, bytes, nullptr);
  gst_buffer_fill(buffer, 0, pairs, bytes);
  setTime(buffer, nsOfSamples(first), nsOfSamples(first + samples));
  sound_.push(buffer);
}

}  // namespace korvia

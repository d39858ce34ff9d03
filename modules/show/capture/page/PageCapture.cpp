#include "PageCapture.h"

#include <gst/app/gstappsink.h>
#include <gst/audio/audio.h>
#include <gst/video/navigation.h>
#include <gst/video/video.h>

#include <cstring>

#include "PageSettings.h"

namespace korvia {

namespace {

constexpr int kPixelBytes = 4;

GstElement* addElement(GstElement* pipeline, const char* factory) {
  GstElement* element = gst_element_factory_make(factory, nullptr);
  if (element)
    gst_bin_add(GST_BIN(pipeline), element);
  return element;
}

/// A sink that hands everything on at once.
GstElement* addSink(GstElement* pipeline, GstCaps* caps) {
  GstElement* sink = addElement(pipeline, "appsink");
  if (sink)
    g_object_set(sink, "caps", caps, "sync", FALSE, "async", FALSE, "enable-last-sample", FALSE, nullptr);
  gst_caps_unref(caps);
  return sink;
}

/// Sets the web view up when it is made. Its signal is one of the element inside the source.
void connectView(GstElement* page) {
  GstIterator* elements = gst_bin_iterate_sources(GST_BIN(page));
  GValue item = G_VALUE_INIT;
  while (gst_iterator_next(elements, &item) == GST_ITERATOR_OK) {
    GObject* element = G_OBJECT(g_value_get_object(&item));
    if (g_signal_lookup("configure-web-view", G_OBJECT_TYPE(element)) != 0)
      g_signal_connect(element, "configure-web-view",
                       G_CALLBACK(+[](GstElement* source, GObject* view, gpointer) {
                         sendSoundToPipeline(view);
                         failWhenRefused(view, source);
                       }),
                       nullptr);
    g_value_reset(&item);
  }
  g_value_unset(&item);
  gst_iterator_free(elements);
}

/// Some builds of the plugin count bytes where samples belong, and readers of the buffer run over its end.
GstPadProbeReturn correctLength(GstPad*, GstPadProbeInfo* info, gpointer) {
  const GstAudioMeta* meta = gst_buffer_get_audio_meta(GST_PAD_PROBE_INFO_BUFFER(info));
  if (!meta || meta->info.layout != GST_AUDIO_LAYOUT_INTERLEAVED)
    return GST_PAD_PROBE_OK;
  GstBuffer* buffer = gst_buffer_make_writable(GST_PAD_PROBE_INFO_BUFFER(info));
  GST_PAD_PROBE_INFO_DATA(info) = buffer;
  // Interleaved samples need no description.
  if (GstMeta* own = gst_buffer_get_meta(buffer, GST_AUDIO_META_API_TYPE))
    gst_buffer_remove_meta(buffer, own);
  return GST_PAD_PROBE_OK;
}

GstCaps* soundCaps() {
  return gst_caps_from_string("audio/x-raw,format=F32LE,layout=interleaved,rate=48000,channels=2");
}

/// What a message says went wrong, without the address of the page.
QString reasonOf(GstMessage* message) {
  GError* error = nullptr;
  gchar* details = nullptr;
  gst_message_parse_error(message, &error, &details);
  const QString text = QString::fromUtf8(details);
  g_clear_error(&error);
  g_free(details);
  return text.contains(QLatin1String("Failed to load")) ? QStringLiteral("page cannot be loaded")
                                                        : QStringLiteral("page has failed");
}

}  // namespace

PageCapture::PageCapture(const CaptureRequest& request, PictureSender& sender)
    : request_(request),
      sender_(sender),
      width_(request.width),
      height_(request.height),
      address_(request.address.toUtf8()),
      sound_([&sender](const float* samples, int frames, std::int64_t stampNs) {
        sender.sendSound(samples, frames, stampNs);
      }) {}

// The page is laid out anew in another size, and stays what it is.
void PageCapture::applySize() {
  GstCaps* caps = gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "BGRA", "width", G_TYPE_INT,
                                      width_.load(), "height", G_TYPE_INT, height_.load(), "framerate",
                                      GST_TYPE_FRACTION, static_cast<int>(request_.rateNumerator),
                                      static_cast<int>(request_.rateDenominator), nullptr);
  g_object_set(pictureFormat_, "caps", caps, nullptr);
  gst_caps_unref(caps);
}

void PageCapture::applyAddress() {
  const MutexLock lock(addressMutex_);
  if (!isAddressNew_)
    return;
  isAddressNew_ = false;
  g_object_set(page_, "location", address_.constData(), nullptr);
}

bool PageCapture::addPictureSink() {
  pictureFormat_ = addElement(pipeline_, "capsfilter");
  pictureSink_ = addSink(pipeline_, gst_caps_new_empty_simple("video/x-raw"));
  if (!pictureFormat_ || !pictureSink_ || !gst_element_link(pictureFormat_, pictureSink_))
    return false;
  applySize();
  GstAppSinkCallbacks callbacks = {};
  callbacks.new_sample = [](GstAppSink* sink, gpointer self) -> GstFlowReturn {
    if (GstSample* sample = gst_app_sink_pull_sample(sink)) {
      static_cast<PageCapture*>(self)->onPicture(sample);
      gst_sample_unref(sample);
    }
    return GST_FLOW_OK;
  };
  gst_app_sink_set_callbacks(GST_APP_SINK(pictureSink_), &callbacks, this, nullptr);
  return gst_element_link_pads(page_, "video", pictureFormat_, "sink");
}

void PageCapture::addSound(GstPad* pad) {
  gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, correctLength, nullptr, nullptr);
  GstElement* convert = addElement(pipeline_, "audioconvert");
  GstElement* resample = addElement(pipeline_, "audioresample");
  GstElement* sink = addSink(pipeline_, soundCaps());
  if (!convert || !resample || !sink || !gst_element_link_many(convert, resample, sink, nullptr))
    return;
  GstAppSinkCallbacks callbacks = {};
  callbacks.new_sample = [](GstAppSink* from, gpointer self) -> GstFlowReturn {
    if (GstSample* sample = gst_app_sink_pull_sample(from)) {
      static_cast<PageCapture*>(self)->onSound(from, sample);
      gst_sample_unref(sample);
    }
    return GST_FLOW_OK;
  };
  gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, this, nullptr);
  for (GstElement* element : {sink, resample, convert})
    gst_element_sync_state_with_parent(element);
  GstPad* to = gst_element_get_static_pad(convert, "sink");
  gst_pad_link(pad, to);
  gst_object_unref(to);
}

bool PageCapture::build() {
  pipeline_ = gst_pipeline_new(nullptr);
  page_ = addElement(pipeline_, "wpesrc");
  if (!page_)
    return false;
  g_object_set(page_, "draw-background", FALSE, nullptr);
  applyAddress();
  connectView(page_);
  g_signal_connect(page_, "pad-added", G_CALLBACK(+[](GstElement*, GstPad* pad, gpointer self) {
                     if (g_str_has_prefix(GST_OBJECT_NAME(pad), "audio"))
                       static_cast<PageCapture*>(self)->addSound(pad);
                   }),
                   this);
  return addPictureSink();
}

std::int64_t PageCapture::stampOf(GstBuffer* buffer) const {
  // The pipeline runs by the monotonic clock.
  return static_cast<std::int64_t>(gst_element_get_base_time(pipeline_) + GST_BUFFER_PTS(buffer));
}

void PageCapture::onPicture(GstSample* sample) {
  sound_.flush(stampOf(gst_sample_get_buffer(sample)));
  GstVideoInfo info;
  GstVideoFrame frame;
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  if (!gst_video_info_from_caps(&info, gst_sample_get_caps(sample)) ||
      !gst_video_frame_map(&frame, &info, buffer, GST_MAP_READ))
    return;
  if (const auto slot = sender_.acquire(info.width, info.height)) {
    const std::size_t rowBytes = static_cast<std::size_t>(info.width) * kPixelBytes;
    const auto* from = static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0));
    for (int row = 0; row < info.height; ++row)
      std::memcpy(slot->data + static_cast<std::size_t>(row) * rowBytes,
                  from + static_cast<std::ptrdiff_t>(row) * GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0),
                  rowBytes);
    sender_.send(*slot, {info.width, info.height, CaptureLayout::PremultipliedAlpha}, stampOf(buffer));
  }
  gst_video_frame_unmap(&frame);
}

void PageCapture::onSound(const void* stream, GstSample* sample) {
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  GstMapInfo map;
  if (!gst_buffer_map(buffer, &map, GST_MAP_READ))
    return;
  sound_.add(stream, reinterpret_cast<const float*>(map.data),
             static_cast<int>(map.size / (2 * sizeof(float))), stampOf(buffer));
  gst_buffer_unmap(buffer, &map);
}

QString PageCapture::waitForEnd() {
  GstBus* bus = gst_element_get_bus(pipeline_);
  GstMessage* message = gst_bus_timed_pop_filtered(
      bus, GST_CLOCK_TIME_NONE, static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_EOS));
  QString reason =
      GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR ? reasonOf(message) : QStringLiteral("page has ended");
  gst_message_unref(message);
  gst_object_unref(bus);
  return reason;
}

QString PageCapture::run() {
  if (!gst_init_check(nullptr, nullptr, nullptr))
    return QStringLiteral("gstreamer does not start");
  if (!build())
    return QStringLiteral("gstreamer element wpesrc is missing");
  if (gst_element_set_state(pipeline_, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
    return QStringLiteral("page does not start");
  takesInput_ = true;
  // Another size or page may have been asked for before.
  applySize();
  applyAddress();
  return waitForEnd();
}

void PageCapture::onResize(const ResizeMessage& size) {
  if (size.width < 2 || size.width > kPageSideMax || size.height < 2 || size.height > kPageSideMax)
    return;
  width_ = size.width;
  height_ = size.height;
  sender_.forgetLast();
  if (takesInput_)
    applySize();
}

void PageCapture::onLoad(const QByteArray& address) {
  {
    const MutexLock lock(addressMutex_);
    address_ = address;
    isAddressNew_ = true;
  }
  if (takesInput_)
    applyAddress();
}

void PageCapture::onInput(const CapturePacket& packet) {
  if (const auto size = packet.head<ResizeMessage>(); size && packet.kind == CaptureMessage::Resize)
    return onResize(*size);
  if (packet.kind == CaptureMessage::Load)
    return onLoad(packet.bytes);
  if (!takesInput_)
    return;
  GstEvent* event = nullptr;
  if (packet.kind == CaptureMessage::Key) {
    const auto key = packet.head<KeyMessage>();
    const QByteArray name = packet.after<KeyMessage>();
    if (key)
      event = key->pressed
                  ? gst_navigation_event_new_key_press(name.constData(), GST_NAVIGATION_MODIFIER_NONE)
                  : gst_navigation_event_new_key_release(name.constData(), GST_NAVIGATION_MODIFIER_NONE);
  } else if (const auto pointer = packet.head<PointerMessage>()) {
    constexpr auto kNone = GST_NAVIGATION_MODIFIER_NONE;
    if (packet.kind == CaptureMessage::MouseMove)
      event = gst_navigation_event_new_mouse_move(pointer->x, pointer->y, kNone);
    else if (packet.kind == CaptureMessage::Wheel)
      event = gst_navigation_event_new_mouse_scroll(pointer->x, pointer->y, pointer->deltaX, pointer->deltaY,
                                                    kNone);
    else if (packet.kind == CaptureMessage::MouseButton && pointer->pressed)
      event = gst_navigation_event_new_mouse_button_press(pointer->button, pointer->x, pointer->y, kNone);
    else if (packet.kind == CaptureMessage::MouseButton)
      event = gst_navigation_event_new_mouse_button_release(pointer->button, pointer->x, pointer->y, kNone);
  }
  if (event)
    gst_element_send_event(pictureSink_, event);
}

}  // namespace korvia

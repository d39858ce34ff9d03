#include "CapturePipeline.h"

#include "engine/EngineLog.h"

namespace korvia {

namespace {

constexpr int kLeakyDownstream = 2;  // of the property "leaky": the oldest makes room

QString textOf(const CaptureFormat& format) {
  return QStringLiteral("%1 x %2 at %3")
      .arg(format.size.width)
      .arg(format.size.height)
      .arg(format.rate.framesPerSecond(), 0, 'f', 2);
}

GstCaps* offeredBy(GstElement* source) {
  GstPad* pad = gst_element_get_static_pad(source, "src");
  GstCaps* caps = pad ? gst_pad_query_caps(pad, nullptr) : gst_caps_new_empty();
  gst_clear_object(&pad);
  return caps;
}

/// What comes waits for at most one picture. Otherwise a slow decoder would let the buffers of the driver
/// fill, each of which is a picture of delay.
GstElement* addQueue(LivePipeline& pipeline, QString& reason) {
  GstElement* queue = pipeline.add("queue", reason);
  if (queue)
    g_object_set(queue, "max-size-buffers", 1u, "max-size-bytes", 0u, "max-size-time", guint64{0}, "leaky",
                 kLeakyDownstream, nullptr);
  return queue;
}

GstElement* addFilter(LivePipeline& pipeline, const char* factory, GstCaps* caps, QString& reason) {
  GstElement* filter = pipeline.add(factory, reason);
  if (filter)
    g_object_set(filter, "caps", caps, nullptr);
  gst_caps_unref(caps);
  return filter;
}

}  // namespace

void addAndRelease(LivePipeline& pipeline, GstElement* element) {
  gst_bin_add(GST_BIN(pipeline.pipeline()), element);
  gst_object_unref(element);
}

void setIfTextFits(GstElement* element, const char* property, const char* value) {
  if (g_object_class_find_property(G_OBJECT_GET_CLASS(element), property))
    gst_util_set_object_arg(G_OBJECT(element), property, value);
}

bool linkToPad(GstElement* from, GstPad* pad) {
  GstPad* output = gst_element_get_static_pad(from, "src");
  const bool linked = output && pad && gst_pad_link(output, pad) == GST_PAD_LINK_OK;
  gst_clear_object(&output);
  gst_clear_object(&pad);
  return linked;
}

void useCommonClock(LivePipeline& pipeline, std::int64_t baseNs) {
  GstClock* clock = gst_system_clock_obtain();
  gst_pipeline_use_clock(GST_PIPELINE(pipeline.pipeline()), clock);
  gst_object_unref(clock);
  gst_element_set_start_time(pipeline.pipeline(), GST_CLOCK_TIME_NONE);
  gst_element_set_base_time(pipeline.pipeline(), static_cast<GstClockTime>(baseNs));
}

std::int64_t commonClockNs() {
  GstClock* clock = gst_system_clock_obtain();
  const GstClockTime time = gst_clock_get_time(clock);
  gst_object_unref(clock);
  return static_cast<std::int64_t>(time);
}

bool linkPictures(LivePipeline& pipeline, GstElement* source, const CaptureSettings& settings,
                  QString& reason) {
  if (gst_element_set_state(source, GST_STATE_READY) == GST_STATE_CHANGE_FAILURE) {
    reason = QStringLiteral("device cannot be opened");
    return false;
  }
  GstCaps* offered = offeredBy(source);
  const CaptureChoice choice = chooseCaptureFormat(offered, settings.wanted);
  gst_caps_unref(offered);
  if (!choice.caps) {
    reason = QStringLiteral("device has no pictures that can be shown");
    return false;
  }
  if (choice.format != settings.wanted)
    qCWarning(logSource, "%s does not offer %s, it delivers %s", qUtf8Printable(settings.name),
              qUtf8Printable(textOf(settings.wanted)), qUtf8Printable(textOf(choice.format)));
  GstElement* filter = addFilter(pipeline, "capsfilter", choice.caps, reason);
  GstElement* last = addQueue(pipeline, reason);
  if (!filter || !last || !gst_element_link_many(source, filter, last, nullptr)) {
    if (reason.isEmpty())
      reason = QStringLiteral("device refuses its format");
    return false;
  }
  const auto append = [&](GstElement* element) {
    const bool linked = element && gst_element_link(last, element);
    last = element;
    return linked;
  };
  if (choice.isJpeg && !append(pipeline.add("jpegdec", reason)))
    return false;
  if (settings.interlaced == Interlaced::AsItComes) {
    GstCaps* whole =
        gst_caps_new_simple("video/x-raw", "interlace-mode", G_TYPE_STRING, "progressive", nullptr);
    if (!append(addFilter(pipeline, "capssetter", whole, reason)))
      return false;
  }
  if (linkToPad(last, pipeline.pictureInlet()))
    return true;
  reason = QStringLiteral("device cannot be linked");
  return false;
}

}  // namespace korvia

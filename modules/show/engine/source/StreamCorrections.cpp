#include "StreamCorrections.h"

#include <gst/video/video.h>

namespace korvia {

namespace {

/// The key under which a parser keeps the colorimetry that the container states.
constexpr char kContainerColors[] = "korvia-container-colors";

void replaceCaps(GstPadProbeInfo* info, GstCaps* caps) {
  gst_event_unref(gst_pad_probe_info_get_event(info));
  GST_PAD_PROBE_INFO_DATA(info) = gst_event_new_caps(caps);
  gst_caps_unref(caps);
}

/// Removes the container's colorimetry from the caps of a parser, so that the parser reads that of the
/// stream.
GstPadProbeReturn takeContainerColors(GstPad* pad, GstPadProbeInfo* info, gpointer) {
  GstEvent* event = gst_pad_probe_info_get_event(info);
  if (GST_EVENT_TYPE(event) != GST_EVENT_CAPS)
    return GST_PAD_PROBE_OK;
  GstCaps* caps = nullptr;
  gst_event_parse_caps(event, &caps);
  const char* colors = gst_structure_get_string(gst_caps_get_structure(caps, 0), "colorimetry");
  GstElement* parser = gst_pad_get_parent_element(pad);
  if (colors && parser) {
    g_object_set_data_full(G_OBJECT(parser), kContainerColors, g_strdup(colors), g_free);
    GstCaps* without = gst_caps_copy(caps);
    gst_structure_remove_field(gst_caps_get_structure(without, 0), "colorimetry");
    replaceCaps(info, without);
  }
  gst_clear_object(&parser);
  return GST_PAD_PROBE_OK;
}

/// Completes the colorimetry that the parser found in the stream with that of the container.
GstPadProbeReturn completeColors(GstPad* pad, GstPadProbeInfo* info, gpointer) {
  GstEvent* event = gst_pad_probe_info_get_event(info);
  GstElement* parser = GST_EVENT_TYPE(event) == GST_EVENT_CAPS ? gst_pad_get_parent_element(pad) : nullptr;
  if (!parser)
    return GST_PAD_PROBE_OK;
  const auto* said = static_cast<const char*>(g_object_get_data(G_OBJECT(parser), kContainerColors));
  GstVideoColorimetry colors;
  if (said && gst_video_colorimetry_from_string(&colors, said)) {
    GstCaps* caps = nullptr;
    gst_event_parse_caps(event, &caps);
    GstVideoColorimetry found = {};
    const char* text = gst_structure_get_string(gst_caps_get_structure(caps, 0), "colorimetry");
    const bool known = text && gst_video_colorimetry_from_string(&found, text);
    if (known && found.range != GST_VIDEO_COLOR_RANGE_UNKNOWN)
      colors.range = found.range;
    if (!known || found.matrix == GST_VIDEO_COLOR_MATRIX_UNKNOWN) {
      gchar* whole = gst_video_colorimetry_to_string(&colors);
      GstCaps* completed = gst_caps_copy(caps);
      gst_caps_set_simple(completed, "colorimetry", G_TYPE_STRING, whole, nullptr);
      g_free(whole);
      replaceCaps(info, completed);
    }
  }
  gst_object_unref(parser);
  return GST_PAD_PROBE_OK;
}

/// The key under which a pad of the Matroska demuxer keeps its first segment since a flush.
constexpr char kFirstSegment[] = "korvia-first-segment";

GstPadProbeReturn keepFirstSegment(GstPad* pad, GstPadProbeInfo* info, gpointer) {
  GstEvent* event = gst_pad_probe_info_get_event(info);
  if (GST_EVENT_TYPE(event) == GST_EVENT_FLUSH_STOP)
    g_object_set_data(G_OBJECT(pad), kFirstSegment, nullptr);
  if (GST_EVENT_TYPE(event) != GST_EVENT_SEGMENT)
    return GST_PAD_PROBE_OK;
  auto* first = static_cast<GstEvent*>(g_object_get_data(G_OBJECT(pad), kFirstSegment));
  if (first) {
    gst_event_unref(event);
    GST_PAD_PROBE_INFO_DATA(info) = gst_event_ref(first);
  } else {
    g_object_set_data_full(G_OBJECT(pad), kFirstSegment, gst_event_ref(event),
                           [](gpointer kept) { gst_event_unref(static_cast<GstEvent*>(kept)); });
  }
  return GST_PAD_PROBE_OK;
}

}  // namespace

void preferStreamColors(GstElement* parser) {
  GstPad* pad = gst_element_get_static_pad(parser, "sink");
  gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, takeContainerColors, nullptr, nullptr);
  gst_object_unref(pad);
  pad = gst_element_get_static_pad(parser, "src");
  gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, completeColors, nullptr, nullptr);
  gst_object_unref(pad);
}

void keepFirstSegments(GstElement* demuxer) {
  g_signal_connect(demuxer, "pad-added", G_CALLBACK(+[](GstElement*, GstPad* pad, gpointer) {
                     const auto events = GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM | GST_PAD_PROBE_TYPE_EVENT_FLUSH;
                     gst_pad_add_probe(pad, static_cast<GstPadProbeType>(events), keepFirstSegment, nullptr,
                                       nullptr);
                   }),
                   nullptr);
}

}  // namespace korvia

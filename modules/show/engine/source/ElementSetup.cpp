#include "ElementSetup.h"

#include <gst/video/gstvideopool.h>
#include <gst/video/video.h>

#include <algorithm>
#include <cstring>

namespace korvia {

namespace {

// Elements that crash the process: avdemux_nut writes through a null pointer when the pictures are raw.
constexpr const char* kUnsafeElements[] = {"avdemux_nut"};
// Results of decodebin's signal "autoplug-select", which no header declares.
constexpr int kAutoplugTry = 0;
constexpr int kAutoplugSkip = 2;

int selectElement(GstElement*, GstPad*, GstCaps*, GstElementFactory* factory, gpointer) {
  const char* name = gst_plugin_feature_get_name(GST_PLUGIN_FEATURE(factory));
  const bool unsafe = std::any_of(std::begin(kUnsafeElements), std::end(kUnsafeElements),
                                  [name](const char* other) { return !std::strcmp(name, other); });
  return unsafe ? kAutoplugSkip : kAutoplugTry;
}

GstPadProbeReturn answerAllocation(GstQuery* query) {
  if (GST_QUERY_TYPE(query) != GST_QUERY_ALLOCATION)
    return GST_PAD_PROBE_OK;
  GstCaps* caps = nullptr;
  gst_query_parse_allocation(query, &caps, nullptr);
  GstVideoInfo info;
  if (!caps || !gst_video_info_from_caps(&info, caps))
    return GST_PAD_PROBE_OK;
  gst_query_add_allocation_meta(query, GST_VIDEO_META_API_TYPE, nullptr);
  // Without a pool that can align, a decoder would still copy a picture that it crops, such as 1920 x 1088 to
  // 1080 lines.
  GstBufferPool* pool = gst_video_buffer_pool_new();
  const auto size = static_cast<guint>(GST_VIDEO_INFO_SIZE(&info));
  gst_query_add_allocation_pool(query, pool, size, 0, 0);
  gst_object_unref(pool);
  return GST_PAD_PROBE_HANDLED;
}

}  // namespace

void setIfThere(GstElement* element, const char* property, int value) {
  if (GParamSpec* spec = g_object_class_find_property(G_OBJECT_GET_CLASS(element), property)) {
    GValue number = G_VALUE_INIT;
    g_value_init(&number, G_TYPE_INT);
    g_value_set_int(&number, value);
    g_object_set_property(G_OBJECT(element), spec->name, &number);
    g_value_unset(&number);
  }
}

GstCaps* capsOf(GstPad* pad) {
  GstCaps* caps = gst_pad_get_current_caps(pad);
  return caps ? caps : gst_pad_query_caps(pad, nullptr);
}

void avoidUnsafeElements(GstElement* decodebin) {
  g_signal_connect(decodebin, "autoplug-select", G_CALLBACK(selectElement), nullptr);
}

void linkNowhere(GstElement* pipeline, GstPad* pad) {
  GstElement* sink = gst_element_factory_make("fakesink", nullptr);
  if (!sink)
    return;
  g_object_set(sink, "sync", FALSE, "async", FALSE, "enable-last-sample", FALSE, nullptr);
  gst_bin_add(GST_BIN(pipeline), sink);
  GstPad* sinkPad = gst_element_get_static_pad(sink, "sink");
  gst_pad_link(pad, sinkPad);
  gst_object_unref(sinkPad);
  gst_element_sync_state_with_parent(sink);
}

void closeInlet(GstElement* bin) {
  GstPad* pad = gst_element_get_static_pad(bin, "sink");
  gst_pad_send_event(pad, gst_event_new_flush_start());
  GST_PAD_STREAM_LOCK(pad);
  GST_PAD_STREAM_UNLOCK(pad);
  gst_object_unref(pad);
}

void offerPaddedPictures(GstPad* pad) {
  gst_pad_add_probe(
      pad, GST_PAD_PROBE_TYPE_QUERY_DOWNSTREAM,
      [](GstPad*, GstPadProbeInfo* info, gpointer) {
        return answerAllocation(gst_pad_probe_info_get_query(info));
      },
      nullptr, nullptr);
}

}  // namespace korvia

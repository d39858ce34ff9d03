#include "GstInit.h"

#include <gst/base/gstbasetransform.h>
#include <gst/gst.h>

#include <mutex>

#include "engine/EngineLog.h"

namespace korvia {

namespace {

// The demuxer announces DNxHR in QuickTime files by a format that no decoder accepts. An element that only
// renames the format lets decodebin decode such a stream; the data are the same.
constexpr char kFileFormat[] = "video/x-gst-fourcc-AVdh";
constexpr char kDecoderFormat[] = "video/x-dnxhd";

GstStaticPadTemplate sinkTemplate =
    GST_STATIC_PAD_TEMPLATE("sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS("video/x-gst-fourcc-AVdh"));
GstStaticPadTemplate srcTemplate =
    GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS("video/x-dnxhd"));

GstCaps* renamed(GstBaseTransform*, GstPadDirection direction, GstCaps* caps, GstCaps* filter) {
  GstCaps* result = gst_caps_copy(caps);
  for (guint i = 0; i < gst_caps_get_size(result); ++i)
    gst_structure_set_name(gst_caps_get_structure(result, i),
                           direction == GST_PAD_SINK ? kDecoderFormat : kFileFormat);
  if (filter) {
    GstCaps* both = gst_caps_intersect_full(filter, result, GST_CAPS_INTERSECT_FIRST);
    gst_caps_unref(result);
    result = both;
  }
  return result;
}

void initClass(gpointer table, gpointer) {
  auto* element = static_cast<GstElementClass*>(table);
  gst_element_class_set_static_metadata(element, "DNxHR caps", "Codec/Parser/Video",
                                        "names the format of DNxHR in QuickTime files", "Korvia");
  gst_element_class_add_static_pad_template(element, &sinkTemplate);
  gst_element_class_add_static_pad_template(element, &srcTemplate);
  auto* transform = static_cast<GstBaseTransformClass*>(table);
  transform->transform_caps = renamed;
  transform->passthrough_on_same_caps = FALSE;
}

void initElement(GTypeInstance* instance, gpointer) {
  // Buffers pass unchanged.
  gst_base_transform_set_passthrough(GST_BASE_TRANSFORM(instance), TRUE);
}

bool registerDnxhrCaps() {
  const GType type =
      g_type_register_static_simple(GST_TYPE_BASE_TRANSFORM, "KorviaDnxhrCaps", sizeof(GstBaseTransformClass),
                                    initClass, sizeof(GstBaseTransform), initElement, GTypeFlags(0));
  return gst_element_register(nullptr, "korviadnxhrcaps", GST_RANK_PRIMARY, type);
}

}  // namespace

bool startGStreamer() {
  static std::once_flag once;
  static bool ready = false;
  std::call_once(once, [] {
    GError* error = nullptr;
    ready = gst_init_check(nullptr, nullptr, &error);
    if (!ready)
      qCWarning(logSource, "gstreamer does not start : %s", error ? error->message : "no reason given");
    g_clear_error(&error);
    if (ready && !registerDnxhrCaps())
      qCWarning(logSource, "dnxhr in quicktime files cannot be decoded");
  });
  return ready;
}

}  // namespace korvia

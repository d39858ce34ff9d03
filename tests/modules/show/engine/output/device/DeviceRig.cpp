#include "DeviceRig.h"

#include <cstring>

namespace korvia::test {

namespace {

DeviceNotes& notes() {
  return DeviceNotes::instance();
}

// Sinks for pictures and for sound.

struct StandInSink {
  GstBaseSink parent;
  GstVideoInfo info;
  gchar* text;
  gint number;
  gchar* mode;
};
struct StandInSinkClass {
  GstBaseSinkClass parent;
};

enum Property { kDevice = 1, kNdiName, kDeviceNumber, kMode };

StandInSink* self(gpointer object) {
  return static_cast<StandInSink*>(object);
}

void setProperty(GObject* object, guint id, const GValue* value, GParamSpec*) {
  StandInSink* sink = self(object);
  if (id == kDeviceNumber) {
    sink->number = g_value_get_int(value);
  } else {
    gchar*& text = id == kMode ? sink->mode : sink->text;
    g_free(text);
    text = g_value_dup_string(value);
  }
}

void getProperty(GObject*, guint, GValue*, GParamSpec*) {}

// ThreadSanitizer does not see the reference count of GObject, which orders this after all other uses.
__attribute__((no_sanitize("thread"))) void finalizeSink(GObject* object) {
  g_free(self(object)->text);
  g_free(self(object)->mode);
  auto* parent = static_cast<GObjectClass*>(g_type_class_peek(GST_TYPE_BASE_SINK));
  parent->finalize(object);
}

gboolean startSink(GstBaseSink* base) {
  const StandInSink* sink = self(base);
  const QString properties = QStringLiteral("%1 %2 %3")
                                 .arg(QString::fromUtf8(sink->text))
                                 .arg(sink->number)
                                 .arg(QString::fromUtf8(sink->mode));
  return notes().open(properties.trimmed()) ? TRUE : FALSE;
}

gboolean startSoundSink(GstBaseSink* base) {
  if (notes().takesSoundAtOnce())
    gst_base_sink_set_sync(base, FALSE);
  return startSink(base);
}

gboolean stopSink(GstBaseSink*) {
  notes().close();
  return TRUE;
}

gboolean setPictureCaps(GstBaseSink* base, GstCaps* caps) {
  if (!gst_video_info_from_caps(&self(base)->info, caps))
    return FALSE;
  gchar* text = gst_caps_to_string(caps);
  notes().noteCaps(QString::fromUtf8(text));
  g_free(text);
  return TRUE;
}

GstFlowReturn renderPicture(GstBaseSink* base, GstBuffer* buffer) {
  GstVideoFrame frame;
  if (!gst_video_frame_map(&frame, &self(base)->info, buffer, GST_MAP_READ))
    return GST_FLOW_ERROR;
  const int number = numberOf(frame);
  gst_video_frame_unmap(&frame);
  if (notes().picture(number, static_cast<qint64>(GST_BUFFER_PTS(buffer))))
    return GST_FLOW_OK;
  GST_ELEMENT_ERROR(base, RESOURCE, WRITE, ("the cable is out"), (nullptr));
  return GST_FLOW_ERROR;
}

GstFlowReturn renderSound(GstBaseSink*, GstBuffer* buffer) {
  GstMapInfo map;
  gst_buffer_map(buffer, &map, GST_MAP_READ);
  const auto* pairs = reinterpret_cast<const gint32*>(map.data);
  QVector<float> left;
  for (gsize i = 0; i < map.size / sizeof(gint32); i += 2)
    left.append(static_cast<float>(pairs[i]) / 2147483648.0F);
  gst_buffer_unmap(buffer, &map);
  notes().soundOf(left.constData(), 1, left.size(), static_cast<qint64>(GST_BUFFER_PTS(buffer)));
  return GST_FLOW_OK;
}

void addProperty(GObjectClass* object, guint id, const char* name) {
  g_object_class_install_property(
      object, id,
      g_param_spec_string(name, name, name, nullptr, static_cast<GParamFlags>(G_PARAM_READWRITE)));
}

void initSinkClass(gpointer klass, const char* caps) {
  auto* object = static_cast<GObjectClass*>(klass);
  object->set_property = setProperty;
  object->get_property = getProperty;
  object->finalize = finalizeSink;
  addProperty(object, kDevice, "device");
  addProperty(object, kNdiName, "ndi-name");
  addProperty(object, kMode, "mode");
  g_object_class_install_property(object, kDeviceNumber,
                                  g_param_spec_int("device-number", "device-number", "device-number", 0,
                                                   G_MAXINT, 0, static_cast<GParamFlags>(G_PARAM_READWRITE)));
  auto* base = static_cast<GstBaseSinkClass*>(klass);
  base->start = startSink;
  base->stop = stopSink;
  auto* element = static_cast<GstElementClass*>(klass);
  gst_element_class_set_static_metadata(element, "stand-in", "Sink", "stands in for a device", "tests");
  GstCaps* all = gst_caps_from_string(caps);
  gst_element_class_add_pad_template(element,
                                     gst_pad_template_new("sink", GST_PAD_SINK, GST_PAD_ALWAYS, all));
  gst_caps_unref(all);
}

template <const char* Caps>
void initPictureClass(gpointer klass, gpointer) {
  initSinkClass(klass, Caps);
  static_cast<GstBaseSinkClass*>(klass)->set_caps = setPictureCaps;
  static_cast<GstBaseSinkClass*>(klass)->render = renderPicture;
}

void initSoundClass(gpointer klass, gpointer) {
  initSinkClass(klass, "audio/x-raw,format=S32LE,rate=48000,channels=2,layout=interleaved");
  static_cast<GstBaseSinkClass*>(klass)->start = startSoundSink;
  static_cast<GstBaseSinkClass*>(klass)->render = renderSound;
}

void initSink(GTypeInstance* instance, gpointer) {
  StandInSink* sink = self(instance);
  gst_video_info_init(&sink->info);
  sink->text = nullptr;
  sink->mode = nullptr;
  sink->number = 0;
}

GType registerSink(const char* name, GClassInitFunc init) {
  const GTypeInfo info{sizeof(StandInSinkClass), nullptr, nullptr,  init,   nullptr, nullptr,
                       sizeof(StandInSink),      0,       initSink, nullptr};
  return g_type_register_static(GST_TYPE_BASE_SINK, name, &info, static_cast<GTypeFlags>(0));
}

// The combiner of NDI: it passes pictures on and keeps sound.

struct StandInCombiner {
  GstElement parent;
  GstPad* source;
};
struct StandInCombinerClass {
  GstElementClass parent;
};

GstFlowReturn chainPicture(GstPad*, GstObject* parent, GstBuffer* buffer) {
  return gst_pad_push(reinterpret_cast<StandInCombiner*>(parent)->source, buffer);
}

GstFlowReturn chainSound(GstPad*, GstObject*, GstBuffer* buffer) {
  GstMapInfo map;
  gst_buffer_map(buffer, &map, GST_MAP_READ);
  notes().soundOf(reinterpret_cast<const float*>(map.data), 2, static_cast<int>(map.size / 8),
                  static_cast<qint64>(GST_BUFFER_PTS(buffer)));
  gst_buffer_unmap(buffer, &map);
  gst_buffer_unref(buffer);
  return GST_FLOW_OK;
}

gboolean swallowEvent(GstPad*, GstObject*, GstEvent* event) {
  gst_event_unref(event);
  return TRUE;
}

constexpr const char* kNdiSound = "audio/x-raw,format=F32LE,rate=48000,channels=2,layout=interleaved";

GstPad* requestSound(GstElement* element, GstPadTemplate* made, const gchar*, const GstCaps*) {
  GstPad* pad = gst_pad_new_from_template(made, "audio");
  gst_pad_set_chain_function(pad, chainSound);
  gst_pad_set_event_function(pad, swallowEvent);
  gst_pad_set_active(pad, TRUE);
  gst_element_add_pad(element, pad);
  return pad;
}

void addTemplate(GstElementClass* element, const char* name, GstPadDirection direction,
                 GstPadPresence presence, const char* caps) {
  GstCaps* all = gst_caps_from_string(caps);
  gst_element_class_add_pad_template(element, gst_pad_template_new(name, direction, presence, all));
  gst_caps_unref(all);
}

void initCombinerClass(gpointer klass, gpointer) {
  auto* element = static_cast<GstElementClass*>(klass);
  element->request_new_pad = requestSound;
  gst_element_class_set_static_metadata(element, "stand-in", "Combiner", "stands in for NDI", "tests");
  addTemplate(element, "video", GST_PAD_SINK, GST_PAD_ALWAYS, "video/x-raw,format=UYVY");
  addTemplate(element, "audio", GST_PAD_SINK, GST_PAD_REQUEST, kNdiSound);
  addTemplate(element, "src", GST_PAD_SRC, GST_PAD_ALWAYS, "video/x-raw,format=UYVY");
}

void initCombiner(GTypeInstance* instance, gpointer klass) {
  auto* element = reinterpret_cast<GstElement*>(instance);
  auto* factory = static_cast<GstElementClass*>(klass);
  GstPad* video = gst_pad_new_from_template(gst_element_class_get_pad_template(factory, "video"), "video");
  gst_pad_set_chain_function(video, chainPicture);
  GST_PAD_SET_PROXY_CAPS(video);
  gst_element_add_pad(element, video);
  GstPad* source = gst_pad_new_from_template(gst_element_class_get_pad_template(factory, "src"), "src");
  gst_element_add_pad(element, source);
  reinterpret_cast<StandInCombiner*>(instance)->source = source;
}

GType combinerType() {
  const GTypeInfo info{sizeof(StandInCombinerClass),
                       nullptr,
                       nullptr,
                       initCombinerClass,
                       nullptr,
                       nullptr,
                       sizeof(StandInCombiner),
                       0,
                       initCombiner,
                       nullptr};
  return g_type_register_static(GST_TYPE_ELEMENT, "KorviaStandInCombiner", &info, static_cast<GTypeFlags>(0));
}

constexpr char kPlanar[] = "video/x-raw,format={I420,YUY2}";
constexpr char kPacked[] = "video/x-raw,format=UYVY";

GType typeOf(const char* element) {
  static const GType planar = registerSink("KorviaStandInPlanar", initPictureClass<kPlanar>);
  static const GType packed = registerSink("KorviaStandInPacked", initPictureClass<kPacked>);
  static const GType sound = registerSink("KorviaStandInSound", initSoundClass);
  static const GType combiner = combinerType();
  if (std::strcmp(element, "v4l2sink") == 0)
    return planar;
  if (std::strcmp(element, "decklinkaudiosink") == 0)
    return sound;
  return std::strcmp(element, "ndisinkcombiner") == 0 ? combiner : packed;
}

constexpr const char* kElements[] = {"v4l2sink", "ndisinkcombiner", "ndisink", "decklinkvideosink",
                                     "decklinkaudiosink"};

}  // namespace

void installStandIn(const char* element) {
  // Takes the place of an installed one.
  gst_element_register(nullptr, element, GST_RANK_NONE, typeOf(element));
}

void removeStandIn(const char* element) {
  GstRegistry* registry = gst_registry_get();
  GstPluginFeature* feature = gst_registry_lookup_feature(registry, element);
  if (!feature)
    return;
  gst_registry_remove_feature(registry, feature);
  gst_object_unref(feature);
}

void installStandIns() {
  startGStreamer();
  for (const char* element : kElements)
    installStandIn(element);
}

}  // namespace korvia::test

#include "DeviceSink.h"

#include "DeviceProviders.h"
#include "engine/output/ElementProperty.h"
#include "engine/source/GstInit.h"

namespace korvia {

namespace {

// In the order in which they are tried. Sound servers know the operator's choice of a default output.
constexpr const char* kDefaultSinks[] = {"pulsesink", "pipewiresink", "alsasink"};

// The device takes samples at the pace of its own clock, and the sink neither skips nor stretches any: the
// drift is corrected before.
constexpr ElementProperty kProperties[] = {{"sync", "false"},         {"provide-clock", "false"},
                                           {"slave-method", "none"},  {"buffer-time", "60000"},
                                           {"latency-time", "10000"}, {"client-name", "Korvia"}};

/// The same element, set up. The kinds of sinks differ in what they have.
GstElement* setUp(GstElement* sink) {
  for (const ElementProperty& property : kProperties)
    if (g_object_class_find_property(G_OBJECT_GET_CLASS(sink), property.name))
      gst_util_set_object_arg(G_OBJECT(sink), property.name, property.value);
  return sink;
}

}  // namespace

GstElement* makeDefaultDeviceSink() {
  if (!startGStreamer())
    return nullptr;
  for (const char* factory : kDefaultSinks) {
    GstElement* sink = gst_element_factory_make(factory, "device");
    if (!sink)
      continue;
    setUp(GST_ELEMENT(gst_object_ref_sink(sink)));
    if (gst_element_set_state(sink, GST_STATE_READY) != GST_STATE_CHANGE_FAILURE)
      return sink;
    gst_element_set_state(sink, GST_STATE_NULL);
    gst_object_unref(sink);
  }
  return nullptr;
}

GstElement* makeNamedDeviceSink(const QString& displayName) {
  if (!startGStreamer())
    return nullptr;
  GstElement* sink = makeDeviceElement("Audio/Sink", displayName);
  return sink ? setUp(sink) : nullptr;
}

}  // namespace korvia

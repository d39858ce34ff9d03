#include "DeviceProviders.h"

#include <QDebug>

namespace korvia {

namespace {

using Visit = std::function<void(GstDevice*, const char*)>;

/// Lists graphics cards, on which nobody plays out. It loads their drivers and leaks a text where there is
/// none.
constexpr const char* kGraphicsProvider = "vulkandeviceprovider";

/// A provider that can watch its sound server is started first: its plain listing leaks three descriptors
/// each time that no server answers, while its start frees what it took.
void visitProvider(GstDeviceProvider* provider, const char* providerName, const char* classes,
                   const Visit& visit) {
  if (GST_DEVICE_PROVIDER_GET_CLASS(provider)->start) {
    if (!gst_device_provider_start(provider))
      return;
    gst_device_provider_stop(provider);
  }
  GList* found = gst_device_provider_get_devices(provider);
  for (GList* entry = found; entry; entry = entry->next) {
    auto* device = GST_DEVICE(entry->data);
    if (gst_device_has_classes(device, classes))
      visit(device, providerName);
  }
  g_list_free_full(found, gst_object_unref);
}

}  // namespace

void visitDevices(const char* classes, const Visit& visit) {
  GError* error = nullptr;
  if (!gst_init_check(nullptr, nullptr, &error)) {
    qDebug("failed to list devices : %s", error ? error->message : "gstreamer does not start");
    g_clear_error(&error);
    return;
  }
  // The monitor selects the providers, since one may replace another.
  GstDeviceMonitor* monitor = gst_device_monitor_new();
  gst_device_monitor_add_filter(monitor, classes, nullptr);
  gchar** names = gst_device_monitor_get_providers(monitor);
  for (gchar** name = names; name && *name; ++name) {
    if (qstrcmp(*name, kGraphicsProvider) == 0)
      continue;
    if (GstDeviceProvider* provider = gst_device_provider_factory_get_by_name(*name)) {
      visitProvider(provider, *name, classes, visit);
      gst_object_unref(provider);
    }
  }
  g_strfreev(names);
  gst_object_unref(monitor);
}

QString displayNameOf(GstDevice* device) {
  gchar* name = gst_device_get_display_name(device);
  QString result = QString::fromUtf8(name);
  g_free(name);
  return result;
}

GstElement* makeDeviceElement(const char* classes, const QString& displayName) {
  GstElement* element = nullptr;
  visitDevices(classes, [&](GstDevice* device, const char*) {
    if (element || displayNameOf(device) != displayName)
      return;
    element = gst_device_create_element(device, nullptr);
    if (element)
      gst_object_ref_sink(element);
  });
  return element;
}

}  // namespace korvia

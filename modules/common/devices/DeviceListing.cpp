#include "DeviceListing.h"

#include <gst/gst.h>

#include <map>

#include "DeviceId.h"
#include "DeviceProviders.h"
#include "ThreadSafety.h"

namespace korvia {

namespace {

constexpr std::chrono::seconds kTimeLimit{2};

/// One listing, shared by its worker thread and the callers that wait for it.
struct Listing {
  Mutex mutex;
  ConditionVariable changed;
  bool done GUARDED_BY(mutex) = false;
  QList<ListedDevice> devices GUARDED_BY(mutex);
  const std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::now() + kTimeLimit;
};

/// The listings in progress by their classes, so that callers which poll a hanging sound system do not pile
/// up threads.
struct Listings {
  Mutex mutex;
  std::map<std::string, std::shared_ptr<Listing>> running GUARDED_BY(mutex);
};

/// Never destroyed, because threads of listings may still run while the process ends.
Listings& listings() {
  static auto* const instance = new Listings;
  return *instance;
}

DeviceProperties propertiesOf(GstDevice* device) {
  DeviceProperties properties;
  GstStructure* structure = gst_device_get_properties(device);
  if (!structure)
    return properties;
  for (int n = 0; n < gst_structure_n_fields(structure); ++n) {
    const gchar* name = gst_structure_nth_field_name(structure, static_cast<guint>(n));
    GValue text = G_VALUE_INIT;
    g_value_init(&text, G_TYPE_STRING);
    if (g_value_transform(gst_structure_get_value(structure, name), &text) && g_value_get_string(&text))
      properties.insert(QString::fromUtf8(name), QString::fromUtf8(g_value_get_string(&text)));
    g_value_unset(&text);
  }
  gst_structure_free(structure);
  return properties;
}

/// The name by which the element of the device opens it; empty when the element has no such property.
QString elementDevice(GstDevice* device) {
  GstElement* element = gst_device_create_element(device, nullptr);
  if (!element)
    return QString();
  QString name;
  const GParamSpec* property = g_object_class_find_property(G_OBJECT_GET_CLASS(element), "device");
  if (property && property->value_type == G_TYPE_STRING) {
    gchar* text = nullptr;
    g_object_get(element, "device", &text, nullptr);
    name = QString::fromUtf8(text);
    g_free(text);
  }
  gst_object_unref(gst_object_ref_sink(element));
  return name;
}

ListedDevice describe(GstDevice* device, const QString& provider) {
  ListedDevice described;
  described.name = displayNameOf(device);
  DeviceProperties properties = propertiesOf(device);
  described.interface = properties.value(QStringLiteral("device.api"));
  // Capture cards do not tell what they belong to.
  if (described.interface.isEmpty() && provider.startsWith(QLatin1String("decklink")))
    described.interface = QStringLiteral("decklink");
  properties.insert(QStringLiteral("device.api"), described.interface);
  properties.insert(QStringLiteral("element.device"), elementDevice(device));
  described.id = stableDeviceId(described.name, properties, DeviceFolders());
  return described;
}

QList<ListedDevice> askSystem(const char* classes) {
  QList<ListedDevice> devices;
  visitDevices(classes, [&devices](GstDevice* device, const char* provider) {
    devices.append(describe(device, QString::fromLatin1(provider)));
  });
  return devices;
}

void runListing(const std::string& classes, const std::shared_ptr<Listing>& listing) {
  QList<ListedDevice> devices = askSystem(classes.c_str());
  {
    Listings& all = listings();
    const MutexLock lock(all.mutex);
    if (all.running[classes] == listing)
      all.running.erase(classes);
  }
  const MutexLock lock(listing->mutex);
  listing->devices = std::move(devices);
  listing->done = true;
  listing->changed.notify_all();
}

std::shared_ptr<Listing> currentListing(const std::string& classes) {
  Listings& all = listings();
  const MutexLock lock(all.mutex);
  std::shared_ptr<Listing>& listing = all.running[classes];
  if (!listing) {
    listing = std::make_shared<Listing>();
    // Detached, because a sound server that hangs for ever must not hold up the end of the process.
    std::thread(runListing, classes, listing).detach();
  }
  return listing;
}

}  // namespace

bool listDevices(const char* classes, QList<ListedDevice>& devices) {
  const std::shared_ptr<Listing> listing = currentListing(classes);
  MutexLock lock(listing->mutex);
  if (!listing->changed.wait_until(lock, listing->deadline,
                                   [&]() REQUIRES(listing->mutex) { return listing->done; })) {
    qDebug("failed to list devices : no answer within the time limit");
    return false;
  }
  devices.append(listing->devices);
  return true;
}

}  // namespace korvia

#include "GLAudioDeviceInfo.h"

#include <gst/gst.h>

#include <QList>

#include "ThreadSafety.h"

namespace {

constexpr std::chrono::seconds kTimeLimit{2};
constexpr char kDeviceClasses[] = "Audio/Sink";

struct Device {
  QString name;
  QString interface;  // "alsa", "pulse"; empty when the system does not tell
};

/// One listing, shared by its worker thread and the callers that wait for it.
struct Listing {
  korvia::Mutex mutex;
  korvia::ConditionVariable changed;
  bool done GUARDED_BY(mutex) = false;
  QList<Device> devices GUARDED_BY(mutex);
  const std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::now() + kTimeLimit;
};

/// The listing in progress, so that callers which poll a hanging sound system do not pile up threads.
korvia::Mutex listingMutex;
std::shared_ptr<Listing> runningListing GUARDED_BY(listingMutex);

QString interfaceOf(GstDevice* device) {
  QString name;
  if (GstStructure* properties = gst_device_get_properties(device)) {
    name = QString::fromUtf8(gst_structure_get_string(properties, "device.api"));
    gst_structure_free(properties);
  }
  return name;
}

/// Appends the devices of the provider. A provider that can watch its sound server is started first: its
/// plain listing leaks three descriptors each time that no server answers, while its start frees what it
/// took.
void appendDevices(GstDeviceProvider* provider, QList<Device>& devices) {
  if (GST_DEVICE_PROVIDER_GET_CLASS(provider)->start) {
    if (!gst_device_provider_start(provider))
      return;
    gst_device_provider_stop(provider);
  }
  GList* found = gst_device_provider_get_devices(provider);
  for (GList* entry = found; entry; entry = entry->next) {
    auto* device = GST_DEVICE(entry->data);
    if (!gst_device_has_classes(device, kDeviceClasses))
      continue;
    gchar* name = gst_device_get_display_name(device);
    devices.append({QString::fromUtf8(name), interfaceOf(device)});
    g_free(name);
  }
  g_list_free_full(found, gst_object_unref);
}

QList<Device> askSystem() {
  QList<Device> devices;
  GError* error = nullptr;
  if (!gst_init_check(nullptr, nullptr, &error)) {
    qDebug("failed to list audio devices : %s", error ? error->message : "gstreamer does not start");
    g_clear_error(&error);
    return devices;
  }
  // The monitor selects the providers, since one may replace another.
  GstDeviceMonitor* monitor = gst_device_monitor_new();
  gst_device_monitor_add_filter(monitor, kDeviceClasses, nullptr);
  gchar** names = gst_device_monitor_get_providers(monitor);
  for (gchar** name = names; name && *name; ++name) {
    if (GstDeviceProvider* provider = gst_device_provider_factory_get_by_name(*name)) {
      appendDevices(provider, devices);
      gst_object_unref(provider);
    }
  }
  g_strfreev(names);
  gst_object_unref(monitor);
  return devices;
}

void runListing(const std::shared_ptr<Listing>& listing) {
  QList<Device> devices = askSystem();
  {
    const korvia::MutexLock lock(listingMutex);
    if (runningListing == listing)
      runningListing.reset();
  }
  const korvia::MutexLock lock(listing->mutex);
  listing->devices = std::move(devices);
  listing->done = true;
  listing->changed.notify_all();
}

std::shared_ptr<Listing> currentListing() {
  const korvia::MutexLock lock(listingMutex);
  if (!runningListing) {
    runningListing = std::make_shared<Listing>();
    // Detached, because a sound server that hangs for ever must not hold up the end of the process.
    std::thread(runListing, runningListing).detach();
  }
  return runningListing;
}

}  // namespace

QStringList GLAudioDeviceInfo::enumAudioDeviceList(const QString& driver) {
  const std::shared_ptr<Listing> listing = currentListing();
  QStringList names;
  {
    korvia::MutexLock lock(listing->mutex);
    if (!listing->changed.wait_until(lock, listing->deadline,
                                     [&]() REQUIRES(listing->mutex) { return listing->done; })) {
      qDebug("failed to list audio devices : no answer within the time limit");
      return names;
    }
    const bool any = driver.isEmpty() || driver.compare(QLatin1String("dsound"), Qt::CaseInsensitive) == 0;
    for (const Device& device : std::as_const(listing->devices)) {
      if (any || device.interface.compare(driver, Qt::CaseInsensitive) == 0)
        names.append(device.name);
    }
  }
  names.removeDuplicates();
  if (names.isEmpty())
    qDebug("no audio device found");
  return names;
}

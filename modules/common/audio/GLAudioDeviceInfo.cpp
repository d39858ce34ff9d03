#include "GLAudioDeviceInfo.h"

#include "devices/DeviceListing.h"

QStringList GLAudioDeviceInfo::enumAudioDeviceList(const QString& driver) {
  QStringList names;
  QList<korvia::ListedDevice> devices;
  if (!korvia::listDevices("Audio/Sink", devices))
    return names;
  const bool any = driver.isEmpty() || driver.compare(QLatin1String("dsound"), Qt::CaseInsensitive) == 0;
  for (const korvia::ListedDevice& device : std::as_const(devices)) {
    if (any || device.interface.compare(driver, Qt::CaseInsensitive) == 0)
      names.append(device.name);
  }
  names.removeDuplicates();
  if (names.isEmpty())
    qDebug("no audio device found");
  return names;
}

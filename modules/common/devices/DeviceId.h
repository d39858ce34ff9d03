// Identifiers of devices that stay the same when a device is plugged in again, whatever number the system
// gives it then. Any thread.
#pragma once
#include <QMap>
#include <QString>

namespace korvia {

/// What GStreamer tells of a device, as texts.
using DeviceProperties = QMap<QString, QString>;

/// Where the system keeps the lasting names of its devices.
struct DeviceFolders {
  QString video = QStringLiteral("/dev/v4l");
  QString sound = QStringLiteral("/proc/asound");
};

/// "v4l2:", "alsa:", "pulse:" and the like followed by a lasting name: the link of a camera, the name of a
/// sound card, the serial number of a capture card. The display name stands in for a device that has none.
QString stableDeviceId(const QString& displayName, const DeviceProperties& properties,
                       const DeviceFolders& folders);

/// Device file of a camera's identifier; empty when it is not plugged in or the identifier is not a camera's.
QString cameraFile(const QString& id, const DeviceFolders& folders);

}  // namespace korvia

// Lists cameras, capture cards and sound devices of this machine through GStreamer's device providers. Any
// thread.
#pragma once
#include <QList>
#include <QString>

namespace korvia {

struct ListedDevice {
  QString name;
  /// "alsa", "pulse", "v4l2"; empty when the system does not tell.
  QString interface;
  /// Stays the same when the device is plugged in again.
  QString id;
};

/// Appends the devices of these classes ("Audio/Sink"). False, with nothing appended and a log line, when the
/// system does not answer within two seconds; who asks meanwhile waits for the same answer.
bool listDevices(const char* classes, QList<ListedDevice>& devices);

}  // namespace korvia

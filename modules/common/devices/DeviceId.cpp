#include "DeviceId.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace korvia {

namespace {

const QString kCameraPrefix = QStringLiteral("v4l2:");

/// The link to a device file, relative to the folder: by the serial number, else by the place of the plug.
QString cameraLink(const QString& file, const QString& folder) {
  for (const char* kind : {"by-id", "by-path"}) {
    const QDir links(folder + QLatin1Char('/') + QLatin1String(kind));
    const QFileInfoList entries = links.entryInfoList(QDir::Files | QDir::System, QDir::Name);
    for (const QFileInfo& entry : entries) {
      if (entry.canonicalFilePath() == QFileInfo(file).canonicalFilePath())
        return QLatin1String(kind) + QLatin1Char('/') + entry.fileName();
    }
  }
  return QString();
}

/// "hw:CARD=<id>,DEV=<n>" for "hw:<card>,<n>": the number of a card depends on the order of plugging in.
QString cardName(const QString& device, const QString& folder) {
  static const QRegularExpression pattern(QStringLiteral("^hw:(\\d+)(?:,(\\d+))?$"));
  const QRegularExpressionMatch match = pattern.match(device);
  if (!match.hasMatch())
    return device;
  QFile file(QStringLiteral("%1/card%2/id").arg(folder, match.captured(1)));
  if (!file.open(QIODevice::ReadOnly))
    return device;
  const QString id = QString::fromUtf8(file.readAll()).trimmed();
  const QString number = match.captured(2).isEmpty() ? QStringLiteral("0") : match.captured(2);
  return QStringLiteral("hw:CARD=%1,DEV=%2").arg(id, number);
}

}  // namespace

QString stableDeviceId(const QString& displayName, const DeviceProperties& properties,
                       const DeviceFolders& folders) {
  const QString file = properties.value(QStringLiteral("device.path"));
  if (!file.isEmpty()) {
    const QString link = cameraLink(file, folders.video);
    return kCameraPrefix + (link.isEmpty() ? file : link);
  }
  const QString interface = properties.value(QStringLiteral("device.api"));
  // What outlasts a replug of a capture card, of a PipeWire node, and of a PulseAudio source or ALSA card.
  for (const char* lasting : {"persistent-id", "serial-number", "node.name", "element.device"}) {
    const QString value = properties.value(QLatin1String(lasting));
    if (!value.isEmpty())
      return (interface.isEmpty() ? QStringLiteral("device") : interface) + QLatin1Char(':') +
             cardName(value, folders.sound);
  }
  return (interface.isEmpty() ? QStringLiteral("device") : interface) + QLatin1Char(':') + displayName;
}

QString cameraFile(const QString& id, const DeviceFolders& folders) {
  if (!id.startsWith(kCameraPrefix))
    return QString();
  const QString place = id.mid(kCameraPrefix.size());
  const QFileInfo file(place.startsWith(QLatin1Char('/')) ? place : folders.video + QLatin1Char('/') + place);
  return file.exists() ? file.canonicalFilePath() : QString();
}

}  // namespace korvia

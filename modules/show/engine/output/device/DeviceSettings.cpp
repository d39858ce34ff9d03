#include "DeviceSettings.h"

#include <algorithm>

namespace korvia {

DeviceSettings DeviceSettings::of(DeviceKind kind, const tagKorviaShowOutputItem& item) {
  DeviceSettings settings;
  settings.kind = kind;
  if (kind == DeviceKind::Ndi)
    settings.ndiName = item.ndiName;
  if (kind == DeviceKind::Sdi) {
    // Without a card the console stores -1. The card that is there later is the first one.
    settings.cardIndex = std::max(0, item.sdiDeviceIndex);
    settings.sdiFormat = item.sdiFormat;
    settings.sdiSignal = item.sdiSignal;
  }
  return settings;
}

QString DeviceSettings::name() const {
  switch (kind) {
    case DeviceKind::VirtualCamera:
      return QStringLiteral("Virtual Camera");
    case DeviceKind::Ndi:
      return QStringLiteral("NDI");
    case DeviceKind::Sdi:
      break;
  }
  return QStringLiteral("SDI");
}

QString DeviceSettings::label() const {
  switch (kind) {
    case DeviceKind::VirtualCamera:
      return QStringLiteral("the virtual camera");
    case DeviceKind::Ndi:
      return QStringLiteral("NDI \"%1\"").arg(ndiName);
    case DeviceKind::Sdi:
      break;
  }
  return QStringLiteral("SDI card %1").arg(cardIndex);
}

}  // namespace korvia

// What the operator has set for an output to a device, and the picture that a device takes. Plain values, any
// thread.
#pragma once
#include <QString>

#include "FrameRate.h"
#include "engine/frame/Frame.h"
#include "tagKorviaShowOutputParam.h"

namespace korvia {

enum class DeviceKind { VirtualCamera, Ndi, Sdi };
inline constexpr int kDeviceKinds = 3;

struct DeviceSettings {
  DeviceKind kind = DeviceKind::VirtualCamera;
  QString ndiName;    ///< empty for the other kinds, as the fields below
  int cardIndex = 0;  ///< from 0 on
  QString sdiFormat;
  QString sdiSignal;

  static DeviceSettings of(DeviceKind kind, const tagKorviaShowOutputItem& item);

  /// As on the pages of the output settings.
  QString name() const;
  /// The subject of a sentence in the log.
  QString label() const;

  friend bool operator==(const DeviceSettings&, const DeviceSettings&) = default;
};

enum class Scan { Progressive, Interlaced };

/// An interlaced picture carries both fields, and `rate` counts such pictures.
struct DevicePicture {
  FrameSize size;
  FrameRate rate;
  Scan scan = Scan::Progressive;
  /// The width of a pixel divided by its height.
  int pixelAspectNumerator = 1;
  int pixelAspectDenominator = 1;
};

}  // namespace korvia

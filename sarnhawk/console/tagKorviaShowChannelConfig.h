// The colour look of a media channel. A plain value, used on the console thread.
#pragma once
#include <QString>

struct tagKorviaShowChannelConfig {
  /// 0 none, 1 to 20 a built-in look, 21 the video look in dazzlePath.
  qint32 dazzleId = 0;
  QString dazzlePath;

  friend bool operator==(const tagKorviaShowChannelConfig&, const tagKorviaShowChannelConfig&) = default;
};

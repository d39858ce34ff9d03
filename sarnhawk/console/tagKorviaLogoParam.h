// A logo or an overlay as the console keeps it. A plain value, used on the console thread.
#pragma once
#include "tagKorviaShowLogoInfo.h"

struct tagKorviaLogoParam {
  /// 1 while the item is shown on the bus.
  qint32 pvmVisible = 0;
  qint32 pgmVisible = 0;
  /// What travels to the engine.
  tagKorviaShowLogoInfo info;

  friend bool operator==(const tagKorviaLogoParam&, const tagKorviaLogoParam&) = default;
};

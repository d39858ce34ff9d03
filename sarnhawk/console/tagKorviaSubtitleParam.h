// A subtitle as the console keeps it. A plain value, used on the console thread.
#pragma once
#include "tagKorviaShowTextInfo.h"

struct tagKorviaSubtitleParam {
  /// 1 while the item is shown on the bus.
  qint32 pvmVisible = 0;
  qint32 pgmVisible = 0;
  /// What travels to the engine.
  tagKorviaShowTextInfo info;

  friend bool operator==(const tagKorviaSubtitleParam&, const tagKorviaSubtitleParam&) = default;
};

// The transition that a take button remembers. A plain value, used on the console thread.
#pragma once
#include <QtGlobal>

struct tagKorviaTakeButton {
  /// Stands for an effect that is drawn anew at each take.
  static constexpr qint32 kRandomEffect = 0xFFFF;

  qint32 effect = 22;
  /// Seconds.
  float duration = 1.0F;
  qint32 easing = 0;

  friend bool operator==(const tagKorviaTakeButton&, const tagKorviaTakeButton&) = default;
};

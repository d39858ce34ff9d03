// The windows that the engine shows its pictures in. Plain values, usable from any thread.
#pragma once
#include <qwindowdefs.h>

#include <QMetaType>
#include <array>

/// One window: its rectangle in pixels, with edges that belong to it as in QRect, and its native handle.
struct tagKorviaWindowInfo {
  qint32 left = 0;
  qint32 top = 0;
  qint32 right = -1;
  qint32 bottom = -1;
  qint32 reserved = 0;
  WId winId = 0;

  friend bool operator==(const tagKorviaWindowInfo&, const tagKorviaWindowInfo&) = default;
};

/// All windows of the console, given when the engine opens. Entries that are not used keep their defaults.
struct tagKorviaShowWindowPackInfo {
  std::array<tagKorviaWindowInfo, 8> media;
  std::array<tagKorviaWindowInfo, 4> stage;
  tagKorviaWindowInfo karaoke;
  tagKorviaWindowInfo pvm;
  tagKorviaWindowInfo pgm;

  friend bool operator==(const tagKorviaShowWindowPackInfo&, const tagKorviaShowWindowPackInfo&) = default;
};

static_assert(sizeof(tagKorviaShowWindowPackInfo) == 15 * sizeof(tagKorviaWindowInfo));

Q_DECLARE_METATYPE(tagKorviaWindowInfo)
Q_DECLARE_METATYPE(tagKorviaShowWindowPackInfo)

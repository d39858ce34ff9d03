// How an item comes and goes. A plain value, usable from any thread.
#pragma once
#include <QMetaType>

struct tagKorviaShowPresentAnimation {
  /// Entrances count from 0, exits from 26.
  qint32 effect = 0;
  qint64 start = 0;
  /// Milliseconds.
  qint64 duration = 400;
  qint32 curve = 1;

  friend bool operator==(const tagKorviaShowPresentAnimation&,
                         const tagKorviaShowPresentAnimation&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowPresentAnimation)

// The playing state of one source, asked of the engine. A plain value.
#pragma once
#include <QMetaType>

struct tagKorviaSourceState {
  /// Not 0 while the object plays.
  qint64 playing = 0;
  qint64 reserved1 = 0;
  /// Tenths of a millisecond.
  qint64 position = 0;
  qint32 reserved2 = 0;
  qint64 reserved3 = 0;
};

Q_DECLARE_METATYPE(tagKorviaSourceState)

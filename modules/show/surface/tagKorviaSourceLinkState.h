// The state of a source's connection, filled by the source for the restart watchdog. A plain value.
#pragma once
#include <QMetaType>
#include <QString>

struct tagKorviaSourceLinkState {
  qint32 reserved1 = 0;
  QString reserved2;
  /// Frames a second that arrive; exactly 0 when no data is arriving.
  float rate = 0;
  qint64 reserved3 = 0;
};

Q_DECLARE_METATYPE(tagKorviaSourceLinkState)

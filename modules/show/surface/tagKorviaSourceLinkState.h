// The state of a source's connection, filled by the source for the restart watchdog and for the mark of a
// failed source. A plain value.
#pragma once
#include <QMetaType>
#include <QString>

struct tagKorviaSourceLinkState {
  /// Counts nothing yet.
  qint32 reserved1 = 0;
  /// In the state Error: the reason, for the operator, without addresses and keys. Empty otherwise, and when
  /// the source does not know it.
  QString reason;
  /// Frames a second that arrive; exactly 0 when no data is arriving.
  float rate = 0;
  /// How long the picture on show lasts by the source's own time stamps, tenths of a millisecond; 0 when
  /// unknown. While the next picture is not there yet, the duration of the one before.
  qint64 pictureDuration = 0;
};

Q_DECLARE_METATYPE(tagKorviaSourceLinkState)

// Tells whether a source does what it is there for, for the mark on its strip. Console thread.
#pragma once
#include <QString>

class IKorviaShowSource;

class SourceHealth {
 public:
  /// What is wrong with the source, in words for people; empty while it is well. `kind` is a
  /// KorviaShowSourceKind. A source on hold may stand still. To be asked more often than once a second.
  QString examine(IKorviaShowSource* source, int kind, bool isOnHold);

 private:
  bool isStandingStill(IKorviaShowSource* source);

  qint64 _frames = -1;
  quint32 _lastPictureTick = 0;
};

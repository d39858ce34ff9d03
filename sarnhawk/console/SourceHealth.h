// Finds out what is wrong with a source, for the warning mark on its strip. Console thread.
#pragma once
#include <QString>

class IKorviaShowSource;

class SourceHealth {
 public:
  /// Whether the on-air rule holds the source.
  enum class Hold { Off, On };

  /// The fault of the source as a text for the operator; empty without a fault. `kind` is a
  /// KorviaShowSourceKind. A source on hold may stand still. To be called more often than once a second.
  QString examine(IKorviaShowSource* source, int kind, Hold hold);

 private:
  bool isStandingStill(IKorviaShowSource* source);

  qint64 _frames = -1;
  quint32 _lastPictureTick = 0;
};

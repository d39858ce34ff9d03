// CPU time, in all and by thread, and memory of this process, from the operating system.
#pragma once
#include <QMap>
#include <QString>

struct ProcessFigures {
  double cpuSeconds = 0;
  qint64 peakResidentBytes = 0;
  /// CPU seconds by thread name; threads of the same name are added up. Threads that ended are missing.
  QMap<QString, double> threadSeconds;

  static ProcessFigures now();
};

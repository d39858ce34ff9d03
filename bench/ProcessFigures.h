// What the operating system says of this process: processor time in all and by thread, memory.
#pragma once
#include <QMap>
#include <QString>

struct ProcessFigures {
  double cpuSeconds = 0;
  qint64 peakResidentBytes = 0;
  /// Processor seconds by thread name, threads of one name added up. Threads that ended are missing here.
  QMap<QString, double> threadSeconds;

  static ProcessFigures now();
};

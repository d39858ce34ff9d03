#include "ProcessFigures.h"

#include <sys/resource.h>
#include <unistd.h>

#include <QDir>
#include <QFile>

namespace {

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + time.tv_usec * 1e-6;
}

QByteArray firstLine(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readLine().trimmed() : QByteArray();
}

}  // namespace

ProcessFigures ProcessFigures::now() {
  ProcessFigures figures;
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  figures.cpuSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
  figures.peakResidentBytes = static_cast<qint64>(usage.ru_maxrss) * 1024;
  const double ticksPerSecond = static_cast<double>(sysconf(_SC_CLK_TCK));
  for (const QString& task : QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    const QString folder = "/proc/self/task/" + task;
    // The name in brackets may contain blanks, so the fields are counted from its closing bracket.
    const QByteArray stat = firstLine(folder + "/stat");
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 13)
      continue;
    const QString name = QString::fromLocal8Bit(firstLine(folder + "/comm"));
    figures.threadSeconds[name] += (fields[11].toDouble() + fields[12].toDouble()) / ticksPerSecond;
  }
  return figures;
}

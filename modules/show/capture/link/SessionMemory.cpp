#include "SessionMemory.h"

#include <unistd.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QList>

namespace korvia {

namespace {

QByteArray readProcFile(const QString& process, const char* name) {
  QFile file(QStringLiteral("/proc/%1/%2").arg(process, QLatin1String(name)));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The session of a process. Its name stands in brackets before and may hold blanks.
qint64 sessionOf(const QString& process) {
  constexpr int kSession = 3;  // counted from behind the name: state, parent, group, session
  const QByteArray text = readProcFile(process, "stat");
  return text.mid(text.lastIndexOf(')') + 2).split(' ').value(kSession).toLongLong();
}

/// 0 when the kernel does not tell.
qint64 shareBytes(const QString& process) {
  constexpr qint64 kKilobyte = 1024;
  for (const QByteArray& line : readProcFile(process, "smaps_rollup").split('\n')) {
    if (line.startsWith("Pss:"))
      return line.mid(4).simplified().split(' ').value(0).toLongLong() * kKilobyte;
  }
  return 0;
}

qint64 residentBytes(const QString& process) {
  return readProcFile(process, "statm").split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
}

}  // namespace

QStringList processesOfSession(qint64 leader) {
  QStringList found;
  const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
  for (const QString& entry : entries) {
    if (entry.at(0).isDigit() && sessionOf(entry) == leader)
      found << entry;
  }
  return found;
}

qint64 sessionResidentBytes(qint64 leader) {
  qint64 sum = 0;
  for (const QString& process : processesOfSession(leader))
    sum += residentBytes(process);
  return sum;
}

qint64 sessionMemoryBytes(qint64 leader) {
  qint64 sum = 0;
  for (const QString& process : processesOfSession(leader)) {
    const qint64 share = shareBytes(process);
    sum += share > 0 ? share : residentBytes(process);
  }
  return sum;
}

}  // namespace korvia

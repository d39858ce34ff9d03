#include "Session.h"

#include <unistd.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QList>
#include <csignal>

namespace korvia {

namespace {

QByteArray readProcFile(const QString& process, const char* name) {
  QFile file(QStringLiteral("/proc/%1/%2").arg(process, QLatin1String(name)));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The session of a process. Its name stands in brackets before and may hold blanks.
pid_t sessionOf(const QString& process) {
  constexpr int kSession = 3;  // counted from behind the name: state, parent, group, session
  const QByteArray text = readProcFile(process, "stat");
  return text.mid(text.lastIndexOf(')') + 2).split(' ').value(kSession).toInt();
}

QStringList sessionProcesses() {
  const pid_t own = ::getsid(0);
  QStringList found;
  const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
  for (const QString& entry : entries) {
    if (entry.at(0).isDigit() && sessionOf(entry) == own)
      found << entry;
  }
  return found;
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

/// All that lies in memory, also what is shared.
qint64 residentBytes(const QString& process) {
  return readProcFile(process, "statm").split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
}

}  // namespace

qint64 sessionMemoryBytes() {
  qint64 sum = 0;
  for (const QString& process : sessionProcesses()) {
    const qint64 share = shareBytes(process);
    sum += share > 0 ? share : residentBytes(process);
  }
  return sum;
}

void endSession() {
  const QString own = QString::number(::getpid());
  for (const QString& process : sessionProcesses()) {
    if (process != own)
      ::kill(process.toInt(), SIGKILL);
  }
  // The folder is removed only when it is the one that the console made for this run.
  QDir folder(QDir::currentPath());
  if (folder.dirName().startsWith(QLatin1String("korvia-capture-")) &&
      folder.absolutePath() == QDir::homePath())
    folder.removeRecursively();
  ::_exit(0);
}

}  // namespace korvia

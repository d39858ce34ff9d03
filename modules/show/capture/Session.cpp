#include "Session.h"

#include <unistd.h>

#include <QDir>
#include <csignal>

#include "link/SessionMemory.h"

namespace korvia {

void endSession() {
  const QString own = QString::number(::getpid());
  for (const QString& process : processesOfSession(::getsid(0))) {
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

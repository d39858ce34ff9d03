#include "HostLog.h"

#include <fcntl.h>
#include <unistd.h>

#include <QStandardPaths>
#include <cstdlib>

#include "LogLine.h"
#include "LogTail.h"
#include "RotatingLogFile.h"
#include "writeAll.h"

namespace korvia {

namespace {

constexpr std::chrono::milliseconds kFileLimit{2000};
// A terminal that reads needs less; a stopped terminal must not hold up the exit for longer.
constexpr std::chrono::milliseconds kStandardErrorLimit{500};

// Never deleted, because threads of libraries may log until the process ends.
HostLog* theLog = nullptr;

}  // namespace

HostLog& HostLog::start(const QString& fileName) {
  theLog = new HostLog(fileName);
  qInstallMessageHandler(&HostLog::onMessage);
  std::atexit(&HostLog::drainAtExit);
  return *theLog;
}

QString HostLog::defaultFileName() {
  return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + QStringLiteral("/korvia.log");
}

HostLog::HostLog(const QString& fileName)
    : onTerminal_{isatty(STDIN_FILENO) == 1, isatty(STDOUT_FILENO) == 1, isatty(STDERR_FILENO) == 1},
      standardError_([](const QByteArray& lines) { writeAll(STDERR_FILENO, lines); }),
      file_([file = std::make_shared<RotatingLogFile>(fileName)](const QByteArray& lines) {
        file->write(lines);
      }) {}

void HostLog::leaveTerminal() {
  const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  if (nowhere < 0)
    return;
  for (int stream = 0; stream < static_cast<int>(onTerminal_.size()); ++stream) {
    if (onTerminal_[static_cast<std::size_t>(stream)])
      dup2(nowhere, stream);
  }
  ::close(nowhere);
}

void HostLog::onMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  const QByteArray line = logLine(type, context.category, text);
  LogTail::instance().add(line);
  theLog->file_.add(line);
  theLog->standardError_.add(line);
  if (type == QtFatalMsg)
    theLog->drain();
}

void HostLog::drainAtExit() {
  theLog->drain();
}

void HostLog::drain() {
  file_.drain(kFileLimit);
  standardError_.drain(kStandardErrorLimit);
}

}  // namespace korvia

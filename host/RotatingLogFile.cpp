#include "RotatingLogFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cstdio>
#include <utility>

#include "LogLine.h"
#include "writeAll.h"

namespace korvia {

namespace {

constexpr std::chrono::milliseconds kRetry{1000};

}  // namespace

RotatingLogFile::RotatingLogFile(const QString& fileName, qint64 fileBytes, int files, Clock clock)
    : fileName_(fileName), fileBytes_(fileBytes), files_(files), clock_(std::move(clock)) {
  open();
}

RotatingLogFile::~RotatingLogFile() {
  close();
}

void RotatingLogFile::open() {
  QDir().mkpath(QFileInfo(fileName_).absolutePath());
  // Opened for appending, so that two programs that share the file do not overwrite each other's lines.
  descriptor_ =
      ::open(QFile::encodeName(fileName_).constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  retryAt_ = clock_() + kRetry;
}

void RotatingLogFile::close() {
  if (descriptor_ >= 0)
    ::close(descriptor_);
  descriptor_ = -1;
}

QString RotatingLogFile::numbered(int number) const {
  if (number == 0)
    return fileName_;
  const QFileInfo file(fileName_);
  return QStringLiteral("%1/%2.%3.%4")
      .arg(file.absolutePath(), file.completeBaseName())
      .arg(number)
      .arg(file.suffix());
}

void RotatingLogFile::write(const QByteArray& lines) {
  if (!isOpen() && clock_() >= retryAt_)
    open();
  // A second time is needed when another program has renamed the file and filled the new one since.
  for (int tries = 0; tries < 2 && isFullFor(lines.size()); ++tries)
    rotate();
  if (!isOpen())
    return lose(lines);
  QByteArray text = isCutOff_ ? QByteArrayLiteral("\n") : QByteArray();
  if (lostLines_ > 0)
    text += logLine(QtWarningMsg, "korvia.host.log", QStringLiteral("%1 lines lost").arg(lostLines_));
  const int head = text.size();
  text += lines;
  const int written = writeAll(descriptor_, text);
  if (written > 0)
    isCutOff_ = text[written - 1] != '\n';
  if (written >= head)
    lostLines_ = 0;
  if (written == text.size())
    return;
  // A disk that is full, or one that has gone: the file may have to be opened anew.
  lose(lines.mid(std::max(0, written - head)));
  close();
  retryAt_ = clock_() + kRetry;
}

void RotatingLogFile::lose(const QByteArray& lines) {
  lostLines_ += lines.count('\n');
}

bool RotatingLogFile::isFullFor(qint64 bytes) const {
  struct stat mine {};
  return descriptor_ >= 0 && fstat(descriptor_, &mine) == 0 && mine.st_size > 0 &&
         mine.st_size + bytes > fileBytes_;
}

void RotatingLogFile::rotate() {
  struct stat mine {};
  struct stat named {};
  fstat(descriptor_, &mine);
  // Another program that shares the file may have renamed it already.
  if (::stat(QFile::encodeName(fileName_).constData(), &named) == 0 && named.st_ino == mine.st_ino) {
    for (int number = files_ - 1; number > 0; --number)
      std::rename(QFile::encodeName(numbered(number - 1)).constData(),
                  QFile::encodeName(numbered(number)).constData());
  }
  close();
  open();
}

}  // namespace korvia

#include "RotatingLogFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

#include "writeAll.h"

namespace korvia {

RotatingLogFile::RotatingLogFile(const QString& fileName, qint64 fileBytes, int files)
    : fileName_(fileName), fileBytes_(fileBytes), files_(files) {
  QDir().mkpath(QFileInfo(fileName_).absolutePath());
  open();
}

RotatingLogFile::~RotatingLogFile() {
  close();
}

void RotatingLogFile::open() {
  // Opened for appending, so that two programs that share the file do not overwrite each other's lines.
  descriptor_ =
      ::open(QFile::encodeName(fileName_).constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
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
  // A second time is needed when another program has renamed the file and filled the new one since.
  for (int tries = 0; tries < 2 && isFullFor(lines.size()); ++tries)
    rotate();
  if (descriptor_ >= 0)
    writeAll(descriptor_, lines);
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

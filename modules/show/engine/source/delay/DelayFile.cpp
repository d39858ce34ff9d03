#include "DelayFile.h"

#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <QDir>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace korvia {

namespace {

constexpr char kNamePattern[] = "korvia-delay-??????";
constexpr char kNameTemplate[] = "/korvia-delay-XXXXXX";

QString textOf(int error) {
  return QString::fromLocal8Bit(std::strerror(error)).toLower();
}

/// What a process left that was killed between making its file and removing the name. A file in use that
/// loses its name here stays usable.
void removeLeftOvers(const QDir& folder) {
  for (const QString& name : folder.entryList({QString::fromLatin1(kNamePattern)}, QDir::Files))
    QFile::remove(folder.filePath(name));
}

}  // namespace

DelayFile::~DelayFile() {
  if (file_ >= 0)
    ::close(file_);
}

bool DelayFile::open(const QString& folder, std::int64_t bytes, std::int64_t reserveBytes, QString& reason) {
  const QDir dir(folder);
  dir.mkpath(QStringLiteral("."));
  removeLeftOvers(dir);
  QByteArray name = QFile::encodeName(dir.absolutePath()) + kNameTemplate;
  file_ = ::mkostemp(name.data(), O_CLOEXEC);
  if (file_ < 0) {
    reason = QStringLiteral("file cannot be made : ") + textOf(errno);
    return false;
  }
  ::unlink(name.constData());
  struct statvfs disk {};
  if (::fstatvfs(file_, &disk) == 0) {
    const auto freeBytes = static_cast<std::int64_t>(disk.f_bavail * disk.f_frsize);
    if (freeBytes - bytes < reserveBytes) {
      reason = QStringLiteral("disk has no room");
      return false;
    }
  }
  // A file system that cannot take the room in advance gives it as the file grows.
  if (::fallocate(file_, 0, 0, bytes) != 0 && errno != EOPNOTSUPP && errno != ENOSYS) {
    reason = QStringLiteral("disk has no room : ") + textOf(errno);
    return false;
  }
  return true;
}

bool DelayFile::write(std::int64_t offset, const std::uint8_t* bytes, std::int64_t count) {
  while (count > 0) {
    const ssize_t done = ::pwrite(file_, bytes, static_cast<std::size_t>(count), offset);
    if (done < 0 && errno == EINTR)
      continue;
    if (done <= 0)
      return false;
    bytes += done;
    offset += done;
    count -= done;
  }
  return true;
}

bool DelayFile::read(std::int64_t offset, std::uint8_t* bytes, std::int64_t count) {
  while (count > 0) {
    const ssize_t done = ::pread(file_, bytes, static_cast<std::size_t>(count), offset);
    if (done < 0 && errno == EINTR)
      continue;
    if (done <= 0)
      return false;
    bytes += done;
    offset += done;
    count -= done;
  }
  return true;
}

}  // namespace korvia

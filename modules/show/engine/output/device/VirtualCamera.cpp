#include "VirtualCamera.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cerrno>
#include <utility>

namespace korvia {

namespace {

// All video devices without hardware behind them; each folder is named like its device.
constexpr const char* kVirtualDevices = "/sys/devices/virtual/video4linux";

enum class Answer { Yes, No, NotAllowed };

Answer askDevice(const QString& path) {
  const int file = open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (file < 0)
    return errno == EACCES ? Answer::NotAllowed : Answer::No;
  v4l2_capability capability{};
  const bool isOne = ioctl(file, VIDIOC_QUERYCAP, &capability) == 0 && isVirtualCamera(capability);
  close(file);
  return isOne ? Answer::Yes : Answer::No;
}

}  // namespace

bool isVirtualCamera(const v4l2_capability& capability) {
  const auto* driver = reinterpret_cast<const char*>(capability.driver);
  const bool tellsOfDevice = (capability.capabilities & V4L2_CAP_DEVICE_CAPS) != 0;
  const __u32 flags = tellsOfDevice ? capability.device_caps : capability.capabilities;
  return qstrncmp(driver, "v4l2 loopback", sizeof(capability.driver)) == 0 &&
         (flags & V4L2_CAP_VIDEO_OUTPUT) != 0;
}

QString findVirtualCamera() {
  QStringList names =
      QDir(QLatin1String(kVirtualDevices)).entryList({QStringLiteral("video*")}, QDir::Dirs, QDir::Name);
  // By number: video2 before video10.
  std::stable_sort(names.begin(), names.end(),
                   [](const QString& left, const QString& right) { return left.size() < right.size(); });
  QString notAllowed;
  for (const QString& name : std::as_const(names)) {
    QString path = QStringLiteral("/dev/") + name;
    const Answer answer = askDevice(path);
    if (answer == Answer::Yes)
      return path;
    if (answer == Answer::NotAllowed && notAllowed.isEmpty())
      notAllowed = std::move(path);
  }
  // The sink tells of the missing permission.
  return notAllowed;
}

}  // namespace korvia

#include "VirtualCamera.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <algorithm>

namespace korvia {

namespace {

// All video devices without hardware behind them; each folder is named like its device.
constexpr const char* kVirtualDevices = "/sys/devices/virtual/video4linux";

bool queryCapability(const QString& path, v4l2_capability& capability) {
  const int file = open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (file < 0)
    return false;
  const bool answered = ioctl(file, VIDIOC_QUERYCAP, &capability) == 0;
  close(file);
  return answered;
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
  for (const QString& name : std::as_const(names)) {
    QString path = QStringLiteral("/dev/") + name;
    v4l2_capability capability{};
    if (queryCapability(path, capability) && isVirtualCamera(capability))
      return path;
  }
  return {};
}

}  // namespace korvia

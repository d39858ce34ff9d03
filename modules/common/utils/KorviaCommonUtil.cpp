#include "KorviaCommonUtil.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHostAddress>
#include <QNetworkInterface>

#include "DrivePath.h"
#include "devices/CameraControls.h"
#include "devices/DeviceListing.h"
#include "paths/ListenPlace.h"

namespace {

constexpr qint64 kMaxContentBytes = 64 * 1024 * 1024;
constexpr double kMaxPairValue = 1e9;

double numberOf(const QString& text) {
  bool isNumber = false;
  const double value = text.trimmed().toDouble(&isNumber);
  // "nan" is a number to Qt, but it is not >= 0.
  return isNumber && value >= 0 ? std::min(value, kMaxPairValue) : 0;
}

/// The address of this machine on the road to other networks; null without such a road.
QHostAddress addressOfDefaultRoute() {
  const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (socket < 0)
    return {};
  // Any public address will do: connecting a UDP socket looks the route up and sends nothing.
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_port = htons(9);
  inet_pton(AF_INET, "192.0.2.1", &place.sin_addr);
  sockaddr_in own{};
  socklen_t length = sizeof own;
  const bool isKnown = ::connect(socket, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0 &&
                       ::getsockname(socket, reinterpret_cast<sockaddr*>(&own), &length) == 0;
  ::close(socket);
  return isKnown ? QHostAddress(ntohl(own.sin_addr.s_addr)) : QHostAddress();
}

QHostAddress addressOfAnyInterface() {
  const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
  for (const QNetworkInterface& interface : interfaces) {
    if (!interface.flags().testFlag(QNetworkInterface::IsUp))
      continue;
    const QList<QNetworkAddressEntry> entries = interface.addressEntries();
    for (const QNetworkAddressEntry& entry : entries) {
      if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol && !entry.ip().isLoopback())
        return entry.ip();
    }
  }
  return {};
}

}  // namespace

bool KorviaCommonUtil::makesureExistDir(const QString& path, bool withParents) {
  const QString folder = korvia::DrivePath::resolve(path);
  if (folder.isEmpty())
    return false;
  if (QFileInfo(folder).isDir())
    return true;
  const bool made = withParents ? QDir().mkpath(folder) : QDir().mkdir(folder);
  if (!made)
    qDebug("failed to make folder : %s", qUtf8Printable(folder));
  return made;
}

bool KorviaCommonUtil::readFileContent(const QString& path, QByteArray& content) {
  content.clear();
  QFile file(korvia::DrivePath::resolve(path));
  // The kind is checked first, because opening a FIFO would wait for its writer.
  if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
    return false;
  // One byte more than allowed detects a file that is too long, even when its size is not known.
  content = file.read(kMaxContentBytes + 1);
  if (file.error() == QFileDevice::NoError && content.size() <= kMaxContentBytes)
    return true;
  qDebug("failed to read file : %s", qUtf8Printable(file.fileName()));
  content.clear();
  return false;
}

void KorviaCommonUtil::collectFileListInExt(const QString& folder, const QString& filter,
                                            QFileInfoList& files, bool withSubFolders, bool withHidden) {
  QDir::Filters kinds = QDir::Files;
  if (withHidden)
    kinds |= QDir::Hidden;
  QDirIterator walk(korvia::DrivePath::resolve(folder), filter.split(QLatin1Char(';'), Qt::SkipEmptyParts),
                    kinds, withSubFolders ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
  QFileInfoList found;
  while (walk.hasNext()) {
    walk.next();
    found.append(walk.fileInfo());
  }
  std::sort(found.begin(), found.end(), [](const QFileInfo& a, const QFileInfo& b) {
    return a.absoluteFilePath() < b.absoluteFilePath();
  });
  files.append(found);
}

QString KorviaCommonUtil::getIp() {
  QString listening = korvia::listenAddresses().constLast();
  if (listening != QLatin1String("0.0.0.0"))
    return listening;
  for (const QHostAddress& address : {addressOfDefaultRoute(), addressOfAnyInterface()}) {
    if (!address.isNull() && !address.isLoopback())
      return address.toString();
  }
  return QStringLiteral("127.0.0.1");
}

QSizeF KorviaCommonUtil::splitePairValue(const QString& text, const QString& separator) {
  const int at = separator.isEmpty() ? -1 : text.indexOf(separator, 0, Qt::CaseInsensitive);
  if (at < 0)
    return {0, 0};
  return {numberOf(text.left(at)), numberOf(text.mid(at + separator.size()))};
}

bool KorviaCommonUtil::enumDShowDeviceList(bool isVideo, std::vector<std::pair<QString, QString>>& devices) {
  QList<korvia::ListedDevice> found;
  if (!korvia::listDevices(isVideo ? "Video/Source" : "Audio/Source", found))
    return false;
  for (const korvia::ListedDevice& device : std::as_const(found))
    devices.emplace_back(device.name, device.id);
  return true;
}

bool KorviaCommonUtil::showDShowDeviceSettingPage(bool isVideo, const QString& name, const QString& id) {
  return isVideo && korvia::showCameraControls(name, id);
}

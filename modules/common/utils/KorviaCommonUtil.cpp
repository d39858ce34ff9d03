#include "KorviaCommonUtil.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkInterface>

#include "DrivePath.h"

namespace {
constexpr qint64 kMaxContentBytes = 64 * 1024 * 1024;
}

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

QString KorviaCommonUtil::getIp() {
  const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
  for (const QNetworkInterface& interface : interfaces) {
    const auto flags = interface.flags();
    if (!(flags & QNetworkInterface::IsRunning) || (flags & QNetworkInterface::IsLoopBack))
      continue;
    const QList<QNetworkAddressEntry> entries = interface.addressEntries();
    for (const QNetworkAddressEntry& entry : entries) {
      if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol && !entry.ip().isLinkLocal())
        return entry.ip().toString();
    }
  }
  return QStringLiteral("127.0.0.1");
}

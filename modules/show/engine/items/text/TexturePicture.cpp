#include "TexturePicture.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>
#include <algorithm>

#include "DrivePath.h"
#include "engine/EngineLog.h"
#include "engine/source/PictureFile.h"

namespace korvia {

namespace {

constexpr int kMostSide = 4096;

/// Whether a TGA file is too short for the size in its header, so that reading it would only take memory.
bool isCutTarga(const QFileInfo& info) {
  if (info.suffix().compare(QLatin1String("tga"), Qt::CaseInsensitive) != 0)
    return false;
  constexpr int kHeaderBytes = 18;
  constexpr int kRunLengthBit = 8;
  constexpr qint64 kMostRun = 128;
  QFile file(info.filePath());
  if (!file.open(QIODevice::ReadOnly))
    return false;
  const QByteArray header = file.read(kHeaderBytes);
  if (header.size() < kHeaderBytes)
    return true;
  const auto* bytes = reinterpret_cast<const uchar*>(header.constData());
  const qint64 pixels =
      qint64{qFromLittleEndian<quint16>(bytes + 12)} * qFromLittleEndian<quint16>(bytes + 14);
  const qint64 pixelBytes = bytes[16] / 8;
  const qint64 least = (bytes[2] & kRunLengthBit) != 0 ? (pixels + kMostRun - 1) / kMostRun * (1 + pixelBytes)
                                                       : pixels * pixelBytes;
  return info.size() < kHeaderBytes + least;
}

QImage readPicture(const QFileInfo& info, QString& reason) {
  PictureFile file;
  if (!file.open(info.filePath(), reason))
    return {};
  if (isCutTarga(info)) {
    reason = QStringLiteral("file is cut off");
    return {};
  }
  const std::unique_ptr<QImageReader> reader = file.reader(reason);
  if (!reader)
    return {};
  QImage image = reader->read();
  if (image.isNull()) {
    reason = reader->errorString().toLower();
    return {};
  }
  if (image.width() > kMostSide || image.height() > kMostSide)
    image = image.copy(0, 0, std::min(image.width(), kMostSide), std::min(image.height(), kMostSide));
  image = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  if (image.isNull())
    reason = QStringLiteral("out of memory");
  // The resolution of the file says nothing about the size in the picture.
  image.setDevicePixelRatio(1);
  return image;
}

}  // namespace

const QImage& TexturePicture::picture(const QString& path) {
  const QFileInfo info(DrivePath::resolve(path));
  const QDateTime modified = info.lastModified();
  if (path == path_ && modified == modified_ && info.size() == bytes_)
    return picture_;
  path_ = path;
  modified_ = modified;
  bytes_ = info.size();
  QString reason;
  picture_ = readPicture(info, reason);
  if (picture_.isNull())
    qCWarning(logEngine, "texture cannot be shown : %s : %s", qUtf8Printable(path), qUtf8Printable(reason));
  return picture_;
}

}  // namespace korvia

#include "PictureFile.h"

#include <QFileInfo>
#include <QtEndian>
#include <algorithm>

#include "DrivePath.h"
#include "Source.h"
#include "engine/frame/FrameFit.h"
#include "engine/frame/PictureFrame.h"

namespace korvia {

namespace {

// The readers of some formats hold the whole file in memory. The largest picture, uncompressed with 16 bits a
// channel, is within this.
constexpr qint64 kMostFileBytes = 1024LL * 1024 * 1024;

}  // namespace

bool PictureFile::open(const QString& path, QString& reason) {
  const QFileInfo info(DrivePath::resolve(path));
  // Reading a device or a FIFO may never end.
  if (!info.isFile()) {
    reason = info.exists() ? QStringLiteral("is no file") : QStringLiteral("no such file");
    return false;
  }
  if (info.size() > kMostFileBytes) {
    reason = QStringLiteral("file too large, %1 bytes").arg(info.size());
    return false;
  }
  file_.setFileName(info.filePath());
  if (!file_.open(QIODevice::ReadOnly)) {
    reason = file_.errorString().toLower();
    return false;
  }
  // TGA files have no signature and may look like cursors, so they are known by their suffix.
  targa_ = info.suffix().compare(QLatin1String("tga"), Qt::CaseInsensitive) == 0;
  return true;
}

QSize PictureFile::sizeInHeader() {
  constexpr int kTargaSizeAt = 12;
  constexpr int kGifSizeAt = 6;
  const QByteArray header = file_.peek(kTargaSizeAt + 4);
  const int at = targa_ ? kTargaSizeAt : header.startsWith("GIF8") ? kGifSizeAt : header.size();
  if (header.size() < at + 4)
    return {};
  const char* bytes = header.constData() + at;
  return {qFromLittleEndian<quint16>(bytes), qFromLittleEndian<quint16>(bytes + 2)};
}

std::unique_ptr<QImageReader> PictureFile::reader(QString& reason) {
  file_.seek(0);
  auto reader = std::make_unique<QImageReader>(&file_);
  reader->setDecideFormatFromContent(true);
  if (targa_)
    reader->setFormat("tga");
  reader->setAutoTransform(true);
  // Qt's reader does not know the size of a TGA file before it has read the picture, and gives the size of
  // the first picture of a GIF, though it draws all of them on the canvas.
  const QSize inHeader = sizeInHeader();
  const QSize size = targa_ ? inHeader : reader->size().expandedTo(inHeader);
  if (!size.isValid()) {
    // Without the size nobody knows how much memory reading would take.
    reason = reader->canRead() ? QStringLiteral("size is not known") : reader->errorString().toLower();
    return nullptr;
  }
  if (static_cast<qint64>(size.width()) * size.height() > kMostPixels) {
    reason = QStringLiteral("too large, %1 x %2").arg(size.width()).arg(size.height());
    return nullptr;
  }
  return reader;
}

FittedPicture PictureFile::read(FrameSize renderSize, QString& reason) {
  const std::unique_ptr<QImageReader> picture = reader(reason);
  if (!picture)
    return {};
  QImage image;
  if (!picture->read(&image)) {
    reason = picture->errorString().toLower();
    return {};
  }
  MutableFrame frame(new Frame(renderSize, alphaOf(image)));
  if (!fitImage(image, *frame)) {
    reason = QStringLiteral("out of memory");
    return {};
  }
  return {std::move(frame).publish(), {image.width(), image.height()}};
}

FrameAlpha alphaOf(const QImage& image) {
  if (!image.hasAlphaChannel())
    return FrameAlpha::None;
  const bool isArgb =
      image.format() == QImage::Format_ARGB32 || image.format() == QImage::Format_ARGB32_Premultiplied;
  const QImage pixels = isArgb ? image : image.convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < pixels.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
    if (std::any_of(row, row + pixels.width(), [](QRgb pixel) { return qAlpha(pixel) != 255; }))
      return FrameAlpha::Plane;
  }
  return FrameAlpha::None;
}

bool fitImage(const QImage& image, Frame& target) {
  const FrameRect rect = fitRect({image.width(), image.height()}, 1, 1, target.size());
  // The scaler of frames is made for small steps, and the smaller picture is converted faster.
  const bool isMuchLarger = image.width() > rect.width * 2 || image.height() > rect.height * 2;
  const QImage shown =
      isMuchLarger ? image.scaled(rect.width, rect.height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                   : image;
  const FrameRef picture = frameFromImage(shown, target.alpha());
  if (!picture)
    return false;
  fitFrame(*picture, rect, target);
  return true;
}

}  // namespace korvia

#include "StillSource.h"

#include <QFileInfo>
#include <QImageReader>
#include <QtEndian>
#include <algorithm>

#include "DrivePath.h"
#include "SourceThreads.h"
#include "engine/EngineLog.h"
#include "engine/frame/FrameFit.h"
#include "engine/frame/PictureFrame.h"

namespace korvia {

namespace {

/// The size of a TGA file, which Qt's reader does not know before it has read the picture. Invalid for a file
/// that is too short.
QSize targaSize(const QString& path) {
  constexpr int kSizeOffset = 12;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    return {};
  const QByteArray header = file.read(kSizeOffset + 4);
  if (header.size() < kSizeOffset + 4)
    return {};
  const char* bytes = header.constData() + kSizeOffset;
  return {qFromLittleEndian<quint16>(bytes), qFromLittleEndian<quint16>(bytes + 2)};
}

/// Reads the picture upright, and scales it down when it is much larger than it is shown; null with a reason.
QImage readPicture(const QString& path, FrameSize renderSize, QString& reason) {
  const QFileInfo file(path);
  // Reading a device or a FIFO may never end.
  if (!file.isFile()) {
    reason = file.exists() ? QStringLiteral("is no file") : QStringLiteral("no such file");
    return {};
  }
  QImageReader reader(path);
  reader.setDecideFormatFromContent(true);
  // TGA files have no signature and may look like cursors, so they are known by their suffix.
  const bool targa = file.suffix().compare(QLatin1String("tga"), Qt::CaseInsensitive) == 0;
  if (targa)
    reader.setFormat("tga");
  reader.setAutoTransform(true);
  const QSize size = targa ? targaSize(path) : reader.size();
  if (!size.isValid()) {
    // Without the size nobody knows how much memory reading would take.
    reason = reader.canRead() ? QStringLiteral("size is not known") : reader.errorString().toLower();
    return {};
  }
  if (static_cast<qint64>(size.width()) * size.height() > kMostPixels) {
    reason = QStringLiteral("too large, %1 x %2").arg(size.width()).arg(size.height());
    return {};
  }
  QImage image;
  if (!reader.read(&image)) {
    reason = reader.errorString().toLower();
    return {};
  }
  const FrameRect rect = fitRect({image.width(), image.height()}, 1, 1, renderSize);
  if (image.width() > rect.width * 2 || image.height() > rect.height * 2)
    image = image.scaled(rect.width, rect.height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  return image;
}

/// None when the image has no alpha channel, or one that is opaque everywhere, as many programs write it.
FrameAlpha alphaOf(const QImage& image) {
  if (!image.hasAlphaChannel())
    return FrameAlpha::None;
  const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < pixels.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
    if (std::any_of(row, row + pixels.width(), [](QRgb pixel) { return qAlpha(pixel) != 255; }))
      return FrameAlpha::Plane;
  }
  return FrameAlpha::None;
}

}  // namespace

std::shared_ptr<StillSource> StillSource::open(const SourceContext& context,
                                               const tagKorviaShowSourceInfo& info,
                                               const tagKorviaFormatInfo& format) {
  std::shared_ptr<StillSource> source(new StillSource(context, info, format, Opening));
  source->thread_ = startSourceThread(info.imagePath, [source] { source->load(); });
  return source;
}

void StillSource::close() {
  closing_ = true;
  PictureSource::close();
  markSourceThreadClosing(thread_);
}

void StillSource::load() {
  const FrameSize renderSize = context().renderSize;
  const QString path = DrivePath::resolve(info().imagePath);
  QString reason;
  QImage image = readPicture(path, renderSize, reason);
  if (image.isNull()) {
    qCWarning(logSource, "picture cannot be shown : %s : %s", qUtf8Printable(path), qUtf8Printable(reason));
    fail(reason);
    return;
  }
  if (closing_)
    return;
  {
    MutexLock lock(sizeMutex_);
    size_ = {image.width(), image.height()};
  }
  const FrameRect rect = fitRect({image.width(), image.height()}, 1, 1, renderSize);
  const FrameRef picture = frameFromImage(image, alphaOf(image));
  image = QImage();
  if (!picture) {
    qCWarning(logSource, "picture cannot be shown : %s : out of memory", qUtf8Printable(path));
    fail(QStringLiteral("out of memory"));
    return;
  }
  MutableFrame fitted(new Frame(renderSize, picture->alpha()));
  fitFrame(*picture, rect, *fitted);
  showPicture(std::move(fitted).publish());
}

QString StillSource::description() const {
  const QString name = QFileInfo(info().imagePath).fileName();
  MutexLock lock(sizeMutex_);
  return size_.isEmpty() ? name : QStringLiteral("%1, %2 x %3").arg(name).arg(size_.width).arg(size_.height);
}

}  // namespace korvia

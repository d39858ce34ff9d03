#include "ImageSource.h"

#include <QFileInfo>

#include "PictureFile.h"
#include "SourceThreads.h"
#include "engine/EngineLog.h"

namespace korvia {

std::shared_ptr<ImageSource> ImageSource::open(const SourceContext& context,
                                               const tagKorviaShowSourceInfo& info,
                                               const tagKorviaFormatInfo& format) {
  std::shared_ptr<ImageSource> source(new ImageSource(context, info, format, Opening));
  source->thread_ = startSourceThread(info.imagePath, [source] { source->load(); });
  return source;
}

void ImageSource::close() {
  closing_ = true;
  PictureSource::close();
  markSourceThreadClosing(thread_);
}

void ImageSource::load() {
  QString reason;
  FittedPicture picture = PictureFile::read(info().imagePath, context().renderSize, reason);
  if (!picture.frame) {
    qCWarning(logSource, "picture cannot be shown : %s : %s", qUtf8Printable(info().imagePath),
              qUtf8Printable(reason));
    fail(reason);
    return;
  }
  {
    MutexLock lock(sizeMutex_);
    size_ = picture.fileSize;
  }
  showPicture(std::move(picture.frame));
}

QString ImageSource::description() const {
  const QString name = QFileInfo(info().imagePath).fileName();
  MutexLock lock(sizeMutex_);
  return size_.isEmpty() ? name : QStringLiteral("%1, %2 x %3").arg(name).arg(size_.width).arg(size_.height);
}

}  // namespace korvia

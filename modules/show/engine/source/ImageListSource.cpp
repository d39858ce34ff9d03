#include "ImageListSource.h"

#include "PictureFile.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

constexpr std::int64_t kPictureNs = 5'000'000'000;

}  // namespace

ImageListSource::ImageListSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                 const tagKorviaFormatInfo& format)
    : PagedSource(context, info, format, {Ends::Wrap, Unreadable::Skip, kPictureNs}),
      paths_(info.imageList) {}

std::shared_ptr<ImageListSource> ImageListSource::open(const SourceContext& context,
                                                       const tagKorviaShowSourceInfo& info,
                                                       const tagKorviaFormatInfo& format) {
  std::shared_ptr<ImageListSource> source(new ImageListSource(context, info, format));
  start(source, source->description());
  return source;
}

int ImageListSource::openItems(QString& reason) {
  if (paths_.isEmpty()) {
    reason = QStringLiteral("no picture in the list");
    qCWarning(logSource, "list of pictures cannot be shown : %s", qUtf8Printable(reason));
  }
  return paths_.size();
}

FrameRef ImageListSource::loadItem(int index, QString& reason) {
  PictureFile file;
  FittedPicture picture;
  if (file.open(paths_[index], reason))
    picture = file.read(context().renderSize, reason);
  if (!picture.frame)
    qCWarning(logSource, "picture skipped : %s : %s", qUtf8Printable(paths_[index]), qUtf8Printable(reason));
  return std::move(picture.frame);
}

QString ImageListSource::description() const {
  return QStringLiteral("%1 pictures").arg(paths_.size());
}

}  // namespace korvia

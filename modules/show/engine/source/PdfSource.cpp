#include "PdfSource.h"

#include <QFileInfo>
#include <algorithm>

#include "PictureFile.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

constexpr int kPageTimeoutMs = 10'000;
constexpr int kMostSide = 8192;

}  // namespace

PdfSource::PdfSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                     const tagKorviaFormatInfo& format)
    : PagedSource(context, info, format, {Ends::Stay, Unreadable::KeepShown, 0}),
      renderer_(info.pdfPath, kPageTimeoutMs) {}

std::shared_ptr<PdfSource> PdfSource::open(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                           const tagKorviaFormatInfo& format) {
  std::shared_ptr<PdfSource> source(new PdfSource(context, info, format));
  start(source, info.pdfPath);
  return source;
}

void PdfSource::close() {
  renderer_.cancel();
  PagedSource::close();
}

int PdfSource::openItems(QString& reason) {
  const int count = renderer_.open(reason);
  if (count < 1 && !renderer_.isCancelled())
    qCWarning(logSource, "document cannot be shown : %s : %s", qUtf8Printable(info().pdfPath),
              qUtf8Printable(reason));
  return count;
}

FrameRef PdfSource::loadItem(int index, QString& reason) {
  const FrameSize renderSize = context().renderSize;
  const QSize size(std::min(renderSize.width, kMostSide), std::min(renderSize.height, kMostSide));
  const QImage page = renderer_.page(index, size, reason);
  MutableFrame frame(new Frame(renderSize));
  if (!page.isNull() && fitImage(page, *frame))
    return std::move(frame).publish();
  if (!page.isNull())
    reason = QStringLiteral("out of memory");
  if (!renderer_.isCancelled())
    qCWarning(logSource, "page %d cannot be shown : %s : %s", index + 1, qUtf8Printable(info().pdfPath),
              qUtf8Printable(reason));
  return {};
}

QString PdfSource::description() const {
  return QFileInfo(info().pdfPath).fileName();
}

}  // namespace korvia

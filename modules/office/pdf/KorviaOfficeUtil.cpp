#include "KorviaOfficeUtil.h"

#include <poppler-qt5.h>

#include <QFileInfo>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <memory>

#include "DrivePath.h"

class KorviaPdfDocument {
 public:
  explicit KorviaPdfDocument(std::unique_ptr<Poppler::Document> opened) : document(std::move(opened)) {}
  std::unique_ptr<Poppler::Document> document;
};

namespace {

constexpr int kMaxSide = 8192;
constexpr int kMaxPages = 2000;
constexpr double kMaxBytes = 512.0 * 1024 * 1024;
constexpr double kPointsPerInch = 72;
constexpr double kBytesPerPixel = 4;

QImage renderPage(Poppler::Document& document, int index, const QSize& size) {
  QImage picture(size, QImage::Format_RGB32);
  if (picture.isNull())
    return picture;
  picture.fill(Qt::black);
  const std::unique_ptr<Poppler::Page> page(document.page(index));
  const QSizeF points = page ? page->pageSizeF() : QSizeF();
  if (points.width() <= 0 || points.height() <= 0)
    return picture;
  const double scale = std::min(size.width() / points.width(), size.height() / points.height());
  const QImage drawn = page->renderToImage(kPointsPerInch * scale, kPointsPerInch * scale);
  QPainter painter(&picture);
  painter.drawImage((size.width() - drawn.width()) / 2, (size.height() - drawn.height()) / 2, drawn);
  return picture;
}

}  // namespace

KorviaPdfDocument* KorviaOfficeUtil::loadPDF(const QString& path, double& width, double& height) {
  const QString file = korvia::DrivePath::resolve(path);
  // The kind is checked first, because opening a FIFO would wait for its writer.
  if (!QFileInfo(file).isFile())
    return nullptr;
  std::unique_ptr<Poppler::Document> document(Poppler::Document::load(file));
  if (!document || document->isLocked() || document->numPages() < 1)
    return nullptr;
  const std::unique_ptr<Poppler::Page> first(document->page(0));
  if (!first)
    return nullptr;
  width = first->pageSizeF().width();
  height = first->pageSizeF().height();
  document->setRenderHint(Poppler::Document::Antialiasing);
  document->setRenderHint(Poppler::Document::TextAntialiasing);
  return new KorviaPdfDocument(std::move(document));
}

QList<QImage> KorviaOfficeUtil::pdfToImage(KorviaPdfDocument* document, int width, int height,
                                           const std::atomic<bool>* isCancelled) {
  QList<QImage> pages;
  if (!document || width < 1 || height < 1)
    return pages;
  const int count = std::min(document->document->numPages(), kMaxPages);
  QSize size(std::min(width, kMaxSide), std::min(height, kMaxSide));
  const double bytes = kBytesPerPixel * size.width() * size.height() * count;
  if (bytes > kMaxBytes) {
    const double factor = std::sqrt(kMaxBytes / bytes);
    size = QSize(static_cast<int>(size.width() * factor), static_cast<int>(size.height() * factor))
               .expandedTo(QSize(1, 1));
  }
  for (int index = 0; index < count && !(isCancelled && *isCancelled); ++index)
    pages.append(renderPage(*document->document, index, size));
  return pages;
}

void KorviaOfficeUtil::closePDF(KorviaPdfDocument* document) {
  delete document;
}

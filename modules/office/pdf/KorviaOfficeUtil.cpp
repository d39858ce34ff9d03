#include "KorviaOfficeUtil.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "PdfDocument.h"

class KorviaPdfDocument {
 public:
  explicit KorviaPdfDocument(std::unique_ptr<korvia::PdfDocument> opened) : document(std::move(opened)) {}
  const std::unique_ptr<korvia::PdfDocument> document;
};

namespace {

constexpr int kMaxSide = korvia::PdfDocument::kMaxSide;
constexpr double kMaxBytes = 512.0 * 1024 * 1024;
constexpr double kBytesPerPixel = 4;

}  // namespace

KorviaPdfDocument* KorviaOfficeUtil::loadPDF(const QString& path, double& width, double& height) {
  QString reason;
  std::unique_ptr<korvia::PdfDocument> document = korvia::PdfDocument::open(path, reason);
  if (!document)
    return nullptr;
  width = document->firstPageSize().width();
  height = document->firstPageSize().height();
  return new KorviaPdfDocument(std::move(document));
}

QList<QImage> KorviaOfficeUtil::pdfToImage(KorviaPdfDocument* document, int width, int height,
                                           const std::atomic<bool>* isCancelled) {
  QList<QImage> pages;
  if (!document || width < 1 || height < 1)
    return pages;
  const int count = document->document->pageCount();
  QSize size(std::min(width, kMaxSide), std::min(height, kMaxSide));
  const double bytes = kBytesPerPixel * size.width() * size.height() * count;
  if (bytes > kMaxBytes) {
    const double factor = std::sqrt(kMaxBytes / bytes);
    size = QSize(static_cast<int>(size.width() * factor), static_cast<int>(size.height() * factor))
               .expandedTo(QSize(1, 1));
  }
  for (int index = 0; index < count && !(isCancelled && *isCancelled); ++index)
    pages.append(document->document->page(index, size));
  return pages;
}

void KorviaOfficeUtil::closePDF(KorviaPdfDocument* document) {
  delete document;
}

#include "PdfDocument.h"

#include <poppler-qt5.h>

#include <QFileInfo>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <mutex>

#include "DrivePath.h"

namespace korvia {

namespace {

constexpr double kPointsPerInch = 72;

bool isFlagSet(const QVariant& flag) {
  const auto* cancelled = static_cast<const std::atomic<bool>*>(flag.value<void*>());
  return cancelled && *cancelled;
}

bool never(const QVariant&) {
  return false;
}

void ignore(const QImage&, const QVariant&) {}

/// A damaged document would fill the log with a line for each of its errors.
void silencePoppler() {
  static std::once_flag once;
  std::call_once(once, [] { Poppler::setDebugErrorFunction([](const QString&, const QVariant&) {}, {}); });
}

QImage drawn(const Poppler::Page& page, double scale, const std::atomic<bool>* isCancelled) {
  const double dotsPerInch = kPointsPerInch * scale;
  const QVariant flag = QVariant::fromValue(static_cast<void*>(const_cast<std::atomic<bool>*>(isCancelled)));
  return page.renderToImage(dotsPerInch, dotsPerInch, -1, -1, -1, -1, Poppler::Page::Rotate0, ignore, never,
                            isFlagSet, flag);
}

}  // namespace

PdfDocument::PdfDocument(std::unique_ptr<Poppler::Document> document, const QSizeF& firstPageSize)
    : document_(std::move(document)), firstPageSize_(firstPageSize) {}

PdfDocument::~PdfDocument() = default;

std::unique_ptr<PdfDocument> PdfDocument::open(const QString& path, QString& reason) {
  const QFileInfo file(DrivePath::resolve(path));
  // The kind is checked first, because opening a FIFO would wait for its writer.
  if (!file.isFile()) {
    reason = file.exists() ? QStringLiteral("is no file") : QStringLiteral("no such file");
    return nullptr;
  }
  silencePoppler();
  std::unique_ptr<Poppler::Document> document(Poppler::Document::load(file.filePath()));
  if (!document) {
    reason = QStringLiteral("no pdf document, or a broken one");
    return nullptr;
  }
  if (document->isLocked()) {
    reason = QStringLiteral("locked by a password");
    return nullptr;
  }
  const std::unique_ptr<Poppler::Page> first(document->numPages() > 0 ? document->page(0) : nullptr);
  if (!first) {
    reason = QStringLiteral("no page in the document");
    return nullptr;
  }
  document->setRenderHint(Poppler::Document::Antialiasing);
  document->setRenderHint(Poppler::Document::TextAntialiasing);
  return std::unique_ptr<PdfDocument>(new PdfDocument(std::move(document), first->pageSizeF()));
}

int PdfDocument::pageCount() const {
  return std::min(document_->numPages(), kMaxPages);
}

QImage PdfDocument::page(int index, const QSize& size, const std::atomic<bool>* isCancelled) const {
  QImage picture(size.boundedTo({kMaxSide, kMaxSide}), QImage::Format_RGB32);
  if (picture.isNull())
    return picture;
  picture.fill(Qt::black);
  const std::unique_ptr<Poppler::Page> page(document_->page(index));
  const QSizeF points = page ? page->pageSizeF() : QSizeF();
  const double scale = std::min(picture.width() / points.width(), picture.height() / points.height());
  // A page without a size stays black.
  if (!(points.width() > 0 && points.height() > 0 && std::isfinite(scale)))
    return picture;
  const QImage image = drawn(*page, scale, isCancelled);
  if (isCancelled && *isCancelled)
    return {};
  QPainter painter(&picture);
  painter.drawImage((picture.width() - image.width()) / 2, (picture.height() - image.height()) / 2, image);
  return picture;
}

}  // namespace korvia

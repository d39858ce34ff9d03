// A PDF document, drawn by poppler. Linked by the office module and by the engine, so it needs no other
// module. A document belongs to one thread at a time; different documents may be used from different threads
// at once.
#pragma once
#include <QImage>
#include <QSizeF>
#include <QString>
#include <atomic>
#include <memory>

namespace Poppler {
class Document;
}

namespace korvia {

class PdfDocument {
 public:
  static constexpr int kMaxSide = 8192;
  static constexpr int kMaxPages = 2000;

  /// Opens the document at a drive path or path. Null with a reason for a file that is none, is locked by a
  /// password, or has no page.
  static std::unique_ptr<PdfDocument> open(const QString& path, QString& reason);
  ~PdfDocument();

  /// At most kMaxPages; further pages are left out.
  int pageCount() const;
  /// Of the first page, in points.
  QSizeF firstPageSize() const { return firstPageSize_; }
  /// The page with its aspect ratio kept, centred on black, in exactly this size, at most kMaxSide a side.
  /// Black for a page that is broken; null when there is not enough memory, or when `isCancelled` becomes
  /// true meanwhile. That is asked between drawing operations, each of which may take long.
  QImage page(int index, const QSize& size, const std::atomic<bool>* isCancelled = nullptr) const;

 private:
  PdfDocument(std::unique_ptr<Poppler::Document> document, const QSizeF& firstPageSize);

  const std::unique_ptr<Poppler::Document> document_;
  const QSizeF firstPageSize_;
};

}  // namespace korvia

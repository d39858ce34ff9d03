// Pages of PDF documents as pictures. A document belongs to one thread at a time; different documents may be
// used from different threads at once.
#pragma once
#include <QImage>
#include <QList>
#include <QString>
#include <atomic>

class KorviaPdfDocument;

class KorviaOfficeUtil {
 public:
  /// Opens the document at a drive path or path and gives the size of its first page in points. Null for a
  /// file that is none, is locked by a password, or has no page; the caller ends a document with closePDF.
  static KorviaPdfDocument* loadPDF(const QString& path, double& width, double& height);

  /// One picture of width x height pixels for each page, at most 8192 on a side and 2000 pages. A page keeps
  /// its aspect ratio, on black. Where all together would take more than 512 MiB they are smaller by one
  /// factor. Stops early with the pages so far when `isCancelled` becomes true.
  static QList<QImage> pdfToImage(KorviaPdfDocument* document, int width, int height,
                                  const std::atomic<bool>* isCancelled = nullptr);

  /// Ends the document; null is allowed.
  static void closePDF(KorviaPdfDocument* document);
};

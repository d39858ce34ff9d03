#include "sources/PdfPreview.h"

#include <QDebug>
#include <QLabel>
#include <QTimer>
#include <algorithm>
#include <chrono>

#include "KorviaOfficeUtil.h"
#include "console/runInBackground.h"
#include "services/GWidgetImagePaint.h"

namespace {

constexpr double kMaxPoints = 1e6;

/// For opening and drawing all pages.
constexpr std::chrono::seconds kTimeLimit{30};

struct Opened {
  std::shared_ptr<KorviaPdfDocument> document;  ///< null when the file is no document
  QSize size;                                   ///< of the first page
};

int pixels(double points) {
  return qRound(std::clamp(points, 0.0, kMaxPoints));
}

Opened openDocument(const QString& path) {
  double width = 0;
  double height = 0;
  const std::shared_ptr<KorviaPdfDocument> document(KorviaOfficeUtil::loadPDF(path, width, height),
                                                    &KorviaOfficeUtil::closePDF);
  return {document, QSize(pixels(width), pixels(height))};
}

}  // namespace

PdfPreview::PdfPreview(GWidgetImagePaint* paint, QWidget* contents, QLabel* label, QObject* parent)
    : QObject(parent), _paint(paint), _contents(contents), _label(label) {}

PdfPreview::~PdfPreview() {
  cancel();
}

void PdfPreview::cancel() {
  if (!_work)
    return;
  _work->isWanted = false;
  _work->mustEnd = true;
  _work.reset();
}

void PdfPreview::load(const QString& path, PageSize pageSize, const QSize& size) {
  if (path == _path)
    return;
  _path = path;
  cancel();
  _pages.clear();
  _index = 0;
  _paint->setImage(QImage());
  _label->setText(tr("%1 / %2").arg(0).arg(0));
  if (path.isEmpty())
    return;
  _work = std::make_shared<Work>();
  QTimer::singleShot(kTimeLimit, this, [work = std::weak_ptr(_work)] {
    // Nobody holds the work of a document that is drawn.
    const std::shared_ptr<Work> running = work.lock();
    if (!running)
      return;
    running->mustEnd = true;
    qDebug("document takes too long : only the pages drawn so far are shown");
  });
  runInBackground(
      this, [path] { return openDocument(path); },
      [this, pageSize, size, work = _work](const Opened& opened) {
        if (!work->isWanted)
          return;
        if (!opened.document) {
          _work.reset();
          return;
        }
        const QSize drawn = pageSize == PageSize::Take ? opened.size : size;
        if (pageSize == PageSize::Take)
          emit sizeTaken(drawn);
        draw(opened.document, drawn, work);
      });
}

void PdfPreview::draw(const std::shared_ptr<KorviaPdfDocument>& document, const QSize& size,
                      const std::shared_ptr<Work>& work) {
  runInBackground(
      this,
      [document, size, work] {
        return KorviaOfficeUtil::pdfToImage(document.get(), size.width(), size.height(), &work->mustEnd);
      },
      [this, size, work](const QList<QImage>& pages) {
        if (!work->isWanted)
          return;
        _work.reset();
        takePages(pages, size);
      });
}

void PdfPreview::takePages(const QList<QImage>& pages, const QSize& size) {
  _pages = pages;
  if (!_pages.isEmpty()) {
    _contents->setFixedSize(size);
    _paint->setImage(_pages[_index]);
  }
  showNumber();
}

void PdfPreview::showPage() {
  _paint->setImage(_pages[_index]);
  showNumber();
}

void PdfPreview::showNumber() {
  _label->setText(tr("%1 / %2").arg(_index + 1).arg(_pages.size()));
}

void PdfPreview::showPrevious() {
  if (_pages.isEmpty())
    return;
  _index = std::max(0, _index - 1);
  showPage();
}

void PdfPreview::showNext() {
  if (_pages.isEmpty())
    return;
  _index = std::min(_pages.size() - 1, _index + 1);
  showPage();
}

#include "sources/PdfPreview.h"

#include <QLabel>
#include <algorithm>

#include "KorviaOfficeUtil.h"
#include "console/runInBackground.h"
#include "services/GWidgetImagePaint.h"

namespace {

constexpr double kMaxPoints = 1e6;

int pixels(double points) {
  return qRound(std::clamp(points, 0.0, kMaxPoints));
}

}  // namespace

PdfPreview::PdfPreview(GWidgetImagePaint* paint, QWidget* contents, QLabel* label, QObject* parent)
    : QObject(parent), _paint(paint), _contents(contents), _label(label) {}

PdfPreview::~PdfPreview() {
  cancel();
}

void PdfPreview::cancel() {
  if (_isCancelled)
    *_isCancelled = true;
  _isCancelled.reset();
}

std::optional<QSize> PdfPreview::load(const QString& path, PageSize pageSize, const QSize& size) {
  if (path == _path)
    return std::nullopt;
  _path = path;
  cancel();
  _pages.clear();
  _index = 0;
  _paint->setImage(QImage());
  _label->setText(tr("%1 / %2").arg(0).arg(0));
  double width = 0;
  double height = 0;
  KorviaPdfDocument* document = KorviaOfficeUtil::loadPDF(path, width, height);
  if (!document)
    return std::nullopt;
  const QSize drawn = pageSize == PageSize::Take ? QSize(pixels(width), pixels(height)) : size;
  _isCancelled = std::make_shared<std::atomic<bool>>(false);
  runInBackground(
      this,
      [document, drawn, isCancelled = _isCancelled] {
        QList<QImage> pages =
            KorviaOfficeUtil::pdfToImage(document, drawn.width(), drawn.height(), isCancelled.get());
        KorviaOfficeUtil::closePDF(document);
        return pages;
      },
      [this, drawn, isCancelled = _isCancelled](const QList<QImage>& pages) {
        if (!*isCancelled)
          takePages(pages, drawn);
      });
  return drawn;
}

void PdfPreview::takePages(const QList<QImage>& pages, const QSize& size) {
  _pages = pages;
  if (_pages.isEmpty())
    return;
  _contents->setFixedSize(size);
  showPage();
}

void PdfPreview::showPage() {
  _paint->setImage(_pages[_index]);
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

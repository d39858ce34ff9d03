// The pages of a PDF as the picker shows them. Pages are drawn on a thread of their own, so the desk stays
// usable with a long document. Console thread.
#pragma once
#include <QImage>
#include <QList>
#include <QObject>
#include <atomic>
#include <memory>
#include <optional>

class GWidgetImagePaint;
class QLabel;
class QWidget;

class PdfPreview : public QObject {
  Q_OBJECT

 public:
  enum class PageSize { Take, Keep };

  /// Shows pages in `paint`, which lies in `contents`, and their number in `label`. None is owned.
  PdfPreview(GWidgetImagePaint* paint, QWidget* contents, QLabel* label, QObject* parent);
  ~PdfPreview() override;

  /// Shows the document at the path; does nothing for the path that is shown. Gives the size at which the
  /// pages are drawn: that of the first page, or `size`. Nothing when the path is the same or no document.
  std::optional<QSize> load(const QString& path, PageSize pageSize, const QSize& size);
  /// The next load shows its document also when the path is the same.
  void forget() { _path.clear(); }

  void showPrevious();
  void showNext();

  int pageCount() const { return _pages.size(); }

 private:
  void showPage();
  void takePages(const QList<QImage>& pages, const QSize& size);
  void cancel();

  GWidgetImagePaint* _paint;
  QWidget* _contents;
  QLabel* _label;
  QString _path;
  QList<QImage> _pages;
  int _index = 0;
  /// Stops the drawing in progress.
  std::shared_ptr<std::atomic<bool>> _isCancelled;
};

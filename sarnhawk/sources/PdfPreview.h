// The pages of a PDF as the picker shows them. The document is opened and drawn on a thread of its own, and
// drawn for half a minute at most, so the desk stays usable with a long or a broken one: the pages that are
// drawn by then are shown. Console thread.
#pragma once
#include <QImage>
#include <QList>
#include <QObject>
#include <QSize>
#include <atomic>
#include <memory>

class GWidgetImagePaint;
class KorviaPdfDocument;
class QLabel;
class QWidget;

class PdfPreview : public QObject {
  Q_OBJECT

 public:
  enum class PageSize { Take, Keep };

  /// Shows pages in `paint`, which lies in `contents`, and their number in `label`. None is owned.
  PdfPreview(GWidgetImagePaint* paint, QWidget* contents, QLabel* label, QObject* parent);
  ~PdfPreview() override;

  /// Shows the document at the path; does nothing for the path that is shown. Pages are drawn in the size of
  /// the first one (PageSize::Take) or in `size`.
  void load(const QString& path, PageSize pageSize, const QSize& size);
  /// The next load shows its document also when the path is the same.
  void forget() { _path.clear(); }

  void showPrevious();
  void showNext();

 signals:
  /// The document that was loaded with PageSize::Take has pages of this size. The pages come later.
  void sizeTaken(const QSize& size);

 private:
  /// A document that is being opened or drawn.
  struct Work {
    std::atomic<bool> mustEnd{false};
    bool isWanted = true;  // console thread
  };

  void draw(const std::shared_ptr<KorviaPdfDocument>& document, const QSize& size,
            const std::shared_ptr<Work>& work);
  void showPage();
  void showNumber();
  void takePages(const QList<QImage>& pages, const QSize& size);
  void cancel();

  GWidgetImagePaint* _paint;
  QWidget* _contents;
  QLabel* _label;
  QString _path;
  QList<QImage> _pages;
  int _index = 0;
  std::shared_ptr<Work> _work;  // null when nothing is drawn
};

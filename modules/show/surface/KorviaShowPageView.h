// A web page as the engine shows it, for the picker: drawn by the same web engine in a process of its own, in
// the size of the widget. The operator's mouse, wheel and keys go to the page, and a source can take the page
// over as it stands. Console thread.
#pragma once
#include <QImage>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <memory>

class KorviaShowPageView : public QWidget {
  Q_OBJECT

 public:
  explicit KorviaShowPageView(QWidget* parent = nullptr);
  ~KorviaShowPageView() override;

  /// Shows the page at this address, with its scheme. A page that is shown already is loaded anew.
  void load(const QString& address);
  QString address() const { return address_; }
  /// Pictures a second of the pages that are loaded from now on, as a fraction. A source takes over only what
  /// runs in its own rate.
  void setFrameRate(qint32 numerator, qint32 denominator);
  /// Gives the page to the source that is opened with the same address next, with all that was done on it.
  /// The view is empty then. A page that no source takes within some seconds ends.
  void handOver();
  /// The newest picture of the page; null before the first one.
  const QImage& picture() const { return picture_; }
  /// What is shown instead of a page: that it loads, or why it cannot be shown.
  QString message() const { return message_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  /// Tab belongs to the page.
  bool focusNextPrevChild(bool) override { return false; }

 private:
  class Session;

  void restart();
  QSize pageSize() const;
  void takePicture();
  void showEnd(const QString& reason);

  QString address_;
  qint32 rateNumerator_ = 25;
  qint32 rateDenominator_ = 1;
  QTimer resized_;
  QString message_;
  QImage picture_;
  std::shared_ptr<Session> session_;  // null while no page is shown
};

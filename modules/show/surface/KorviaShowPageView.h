// A web page as the engine shows it, for the picker: drawn by the same web engine in a process of its own, in
// the size of the widget. The operator's mouse, wheel and keys go to the page. Console thread.
#pragma once
#include <QImage>
#include <QString>
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
  void takePicture();
  void showEnd(const QString& reason);

  QString address_;
  QString message_;
  QImage picture_;
  std::shared_ptr<Session> session_;  // null while no page is shown
};

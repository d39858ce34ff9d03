// A black window in which the engine shows a picture. Under X11 the engine draws into the native window and
// Qt never paints there; on other platforms the engine passes an image. Console thread, except
// setMonitorImage, which any thread may call.
#pragma once
#include <QImage>
#include <QWidget>

#include "ThreadSafety.h"

class GWidgetVideoPreview : public QWidget {
  Q_OBJECT

 public:
  explicit GWidgetVideoPreview(QWidget* parent = nullptr);

  /// Shows the image in the middle of the window at its own size, from the next paint on. Any thread.
  Q_INVOKABLE void setMonitorImage(const QImage& image);

  QPaintEngine* paintEngine() const override;

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* ancestor, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  /// Watches the widgets between the window and its native parent.
  void followAncestors();
  void alignWindow();

  const bool _engineDraws;
  korvia::Mutex _mutex;
  QImage _image GUARDED_BY(_mutex);
  bool _paintAsked GUARDED_BY(_mutex) = false;
};

#include "console/GWidgetVideoPreview.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QPainter>
#include <QWindow>
#include <memory>

namespace {

// The X server fills a window with its background colour, so that a window without a picture is black and
// does not show the desktop. Any client may set the colour; a connection of our own avoids private headers of
// Qt.
void setServerBackgroundBlack(WId window) {
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };
  static const std::unique_ptr<xcb_connection_t, Disconnect> connection(xcb_connect(nullptr, nullptr));
  if (xcb_connection_has_error(connection.get()))
    return;
  const auto id = static_cast<xcb_window_t>(window);
  const uint32_t black = 0;
  xcb_change_window_attributes(connection.get(), id, XCB_CW_BACK_PIXEL, &black);
  xcb_clear_area(connection.get(), 0, id, 0, 0, 0, 0);
  xcb_flush(connection.get());
}

}  // namespace

GWidgetVideoPreview::GWidgetVideoPreview(QWidget* parent)
    : QWidget(parent), _engineDraws(QGuiApplication::platformName() == QLatin1String("xcb")) {
  setAttribute(Qt::WA_DontCreateNativeAncestors);
  setAttribute(Qt::WA_NativeWindow);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_NoSystemBackground);
  setAttribute(Qt::WA_PaintOnScreen, _engineDraws);
}

void GWidgetVideoPreview::setMonitorImage(const QImage& image) {
  {
    korvia::MutexLock lock(_mutex);
    _image = image;
    if (_paintAsked)
      return;
    _paintAsked = true;
  }
  QMetaObject::invokeMethod(
      this, [this] { update(); }, Qt::QueuedConnection);
}

QPaintEngine* GWidgetVideoPreview::paintEngine() const {
  return _engineDraws ? nullptr : QWidget::paintEngine();
}

bool GWidgetVideoPreview::event(QEvent* event) {
  const bool handled = QWidget::event(event);
  if (event->type() == QEvent::Show || event->type() == QEvent::ParentChange)
    followAncestors();
  if (event->type() == QEvent::WinIdChange && _engineDraws && internalWinId())
    setServerBackgroundBlack(internalWinId());
  return handled;
}

// Qt moves a native window when its own widget moves, but not when a parent without a native window moves.
void GWidgetVideoPreview::followAncestors() {
  const QWidget* native = nativeParentWidget();
  for (QWidget* ancestor = parentWidget(); ancestor && ancestor != native;
       ancestor = ancestor->parentWidget())
    ancestor->installEventFilter(this);
  alignWindow();
}

bool GWidgetVideoPreview::eventFilter(QObject* ancestor, QEvent* event) {
  if (event->type() == QEvent::Move)
    alignWindow();
  return QWidget::eventFilter(ancestor, event);
}

void GWidgetVideoPreview::alignWindow() {
  if (windowHandle() && nativeParentWidget())
    windowHandle()->setPosition(mapTo(nativeParentWidget(), QPoint()));
}

void GWidgetVideoPreview::paintEvent(QPaintEvent*) {
  if (_engineDraws)
    return;
  QImage image;
  {
    korvia::MutexLock lock(_mutex);
    image = _image;
    _paintAsked = false;
  }
  QPainter painter(this);
  painter.fillRect(rect(), Qt::black);
  if (image.isNull())
    return;
  image.setDevicePixelRatio(devicePixelRatioF());
  const QSizeF size = QSizeF(image.size()) / devicePixelRatioF();
  painter.drawImage(QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), image);
}

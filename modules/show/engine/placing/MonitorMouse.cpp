#include "MonitorMouse.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleHints>

#include "engine/monitor/PictureScaler.h"

namespace korvia {

namespace {

// Of the screen.
constexpr double kReachPixels = 8;
// Of the render picture.
constexpr double kStepPixels = 1;
constexpr double kLongStepPixels = 10;

FrameSize nativeSize(const QWidget& widget) {
  const QSize size = widget.size() * widget.devicePixelRatioF();
  return {size.width(), size.height()};
}

}  // namespace

void MonitorMouse::watch(const std::shared_ptr<ItemBoard>& board, int bus, WId window) {
  QCoreApplication* application = QCoreApplication::instance();
  if (!application || window == 0)
    return;
  QMetaObject::invokeMethod(
      application,
      [board, bus, window] {
        if (QWidget* monitor = QWidget::find(window))
          new MonitorMouse(board, bus, monitor);
      },
      Qt::QueuedConnection);
}

MonitorMouse::MonitorMouse(const std::shared_ptr<ItemBoard>& board, int bus, QWidget* monitor)
    : QObject(monitor), board_(board), monitor_(monitor), drag_(board, bus) {
  monitor->installEventFilter(this);
  // A move without the button tells that the release was lost.
  monitor->setMouseTracking(true);
}

bool MonitorMouse::eventFilter(QObject*, QEvent* event) {
  if (!board_->isOpen()) {
    monitor_->removeEventFilter(this);
    deleteLater();
    return false;
  }
  switch (event->type()) {
    // The second press of a double click takes an item too.
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
      return press(*static_cast<QMouseEvent*>(event));
    case QEvent::MouseMove:
      return move(*static_cast<QMouseEvent*>(event));
    case QEvent::MouseButtonRelease:
      return release(*static_cast<QMouseEvent*>(event));
    case QEvent::KeyPress:
      return key(*static_cast<QKeyEvent*>(event));
    // A window that comes up may get the release.
    case QEvent::FocusOut:
    case QEvent::Hide:
      if (drag_.isHeld())
        drag_.release();
      return false;
    default:
      return false;
  }
}

bool MonitorMouse::press(const QMouseEvent& event) {
  if (event.button() != Qt::LeftButton || !drag_.take(placeOf(event.localPos())))
    return false;
  pressedAt_ = event.pos();
  moved_ = false;
  // For the arrow keys.
  monitor_->setFocus(Qt::MouseFocusReason);
  return true;
}

bool MonitorMouse::move(const QMouseEvent& event) {
  if (!drag_.isHeld())
    return false;
  if (!event.buttons().testFlag(Qt::LeftButton)) {
    drag_.release();
    return false;
  }
  // A click does not move the item by the trembling of the hand.
  const int distance = (event.pos() - pressedAt_).manhattanLength();
  moved_ = moved_ || distance >= QGuiApplication::styleHints()->startDragDistance();
  if (!moved_)
    return true;
  const bool attracts = !event.modifiers().testFlag(Qt::ControlModifier);
  drag_.moveTo(placeOf(event.localPos()), {event.modifiers().testFlag(Qt::ShiftModifier),
                                           attracts ? scale() * kReachPixels : QPointF()});
  return true;
}

bool MonitorMouse::release(const QMouseEvent& event) {
  if (event.button() != Qt::LeftButton || !drag_.isHeld())
    return false;
  drag_.release();
  return true;
}

bool MonitorMouse::key(const QKeyEvent& event) {
  if (event.key() == Qt::Key_Escape && drag_.isHeld()) {
    drag_.cancel();
    return true;
  }
  const double pixels = event.modifiers().testFlag(Qt::ShiftModifier) ? kLongStepPixels : kStepPixels;
  switch (event.key()) {
    case Qt::Key_Left:
      return drag_.step({-pixels, 0});
    case Qt::Key_Right:
      return drag_.step({pixels, 0});
    case Qt::Key_Up:
      return drag_.step({0, -pixels});
    case Qt::Key_Down:
      return drag_.step({0, pixels});
    default:
      return false;
  }
}

QPointF MonitorMouse::scale() const {
  const FrameSize picture = board_->size();
  const FrameSize shown = monitorRect(picture, nativeSize(*monitor_)).size;
  if (shown.isEmpty())
    return {};
  const double ratio = monitor_->devicePixelRatioF();
  return {ratio * picture.width / shown.width, ratio * picture.height / shown.height};
}

QPointF MonitorMouse::placeOf(const QPointF& position) const {
  const MonitorRect shown = monitorRect(board_->size(), nativeSize(*monitor_));
  const QPointF corner = QPointF(shown.x, shown.y) / monitor_->devicePixelRatioF();
  const QPointF inside = position - corner;
  return {inside.x() * scale().x(), inside.y() * scale().y()};
}

}  // namespace korvia

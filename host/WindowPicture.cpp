#include "WindowPicture.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QPixmap>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <QWindow>

namespace korvia {

namespace {

/// Time for the raised window and its monitors to draw some frames.
constexpr int kRedrawMs = 250;

/// Raises the window, then its floating windows, then dialogs, which have to be on top. Without a window
/// manager nothing else keeps this order.
void bringToFront(QWidget* window) {
  window->raise();
  QWidgetList dialogs;
  for (QWidget* other : QApplication::topLevelWidgets()) {
    if (other == window || !other->isVisible())
      continue;
    if (qobject_cast<QDialog*>(other))
      dialogs << other;
    else
      other->raise();
  }
  for (QWidget* dialog : dialogs)
    dialog->raise();
}

void letItRedraw() {
  QEventLoop loop;
  QTimer::singleShot(kRedrawMs, &loop, &QEventLoop::quit);
  loop.exec(QEventLoop::ExcludeUserInputEvents);
}

}  // namespace

QImage pictureOf(QWidget* window) {
  QScreen* screen = window->windowHandle() ? window->windowHandle()->screen() : nullptr;
  if (!screen || QGuiApplication::platformName() != QLatin1String("xcb"))
    return window->grab().toImage();
  bringToFront(window);
  letItRedraw();
  const QRect place(window->mapToGlobal(QPoint()) - screen->geometry().topLeft(), window->size());
  return screen->grabWindow(0, place.x(), place.y(), place.width(), place.height()).toImage();
}

}  // namespace korvia

#include "WindowPicture.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <QWindow>

namespace korvia {

namespace {

/// Long enough for a raised window and its monitors to be drawn, some frames of each.
constexpr int kRedrawMs = 250;

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
  window->raise();
  letItRedraw();
  const QRect place(window->mapToGlobal(QPoint()) - screen->geometry().topLeft(), window->size());
  return screen->grabWindow(0, place.x(), place.y(), place.width(), place.height()).toImage();
}

}  // namespace korvia

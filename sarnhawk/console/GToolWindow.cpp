#include "console/GToolWindow.h"

#include <QKeyEvent>

namespace {

constexpr auto kToolWindow = static_cast<Qt::WindowFlags>(0x44001);
static_assert(0x44001 == (Qt::Window | Qt::WindowStaysOnTopHint | Qt::WindowMinimizeButtonHint));

}  // namespace

GToolWindow::GToolWindow(QWidget* parent) : QWidget(parent, kToolWindow) {
  // Without this attribute the style sheet draws no frame.
  setAttribute(Qt::WA_StyledBackground);
}

void GToolWindow::present() {
  if (isMinimized())
    showNormal();
  else
    show();
  raise();
  activateWindow();
}

void GToolWindow::onDestroyUi() {
  hide();
  delete this;
}

// Escape hides the window, because without a window manager there is no close button.
void GToolWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    hide();
  else
    QWidget::keyPressEvent(event);
}

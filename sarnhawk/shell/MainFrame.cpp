#include "MainFrame.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "ConsoleLook.h"
#include "GAppCaptionBar.h"
#include "HoverMoveFilter.h"
#include "console/KorviaSarnhawk.h"
#include "tagKorviaProductInfo.h"

namespace {

constexpr int kEdgeReach = 5;
constexpr int kMenuGap = 4;
constexpr QSize kMinimumSize(1024, 640);
constexpr QSize kUsefulSize(1280, 720);

Qt::CursorShape cursorFor(bool left, bool right, bool bottom) {
  if (bottom && left)
    return Qt::SizeBDiagCursor;
  if (bottom && right)
    return Qt::SizeFDiagCursor;
  if (bottom)
    return Qt::SizeVerCursor;
  return left || right ? Qt::SizeHorCursor : Qt::ArrowCursor;
}

}  // namespace

MainFrame::MainFrame() : QFrame(nullptr, Qt::FramelessWindowHint) {
  setFrameShape(QFrame::Panel);
}

MainFrame::~MainFrame() = default;

bool MainFrame::isValid() {
  return true;
}

bool MainFrame::release() {
  if (isValid())
    delete this;
  return true;
}

void* MainFrame::queryInterface(const Identifier* id, unsigned version) {
  if (isRequestFor(kIMainFrameId, id, version))
    return static_cast<IMainFrame*>(this);
  if (isRequestFor(kIKorviaSarnhawkId, id, version))
    return static_cast<IKorviaSarnhawk*>(this);
  return nullptr;
}

bool MainFrame::create(void* reserved1, IProgressSink* progress, void* reserved2,
                       const tagKorviaProductInfo* product, const QString& rootPath) {
  applyConsoleLook(*qApp);
  setAttribute(Qt::WA_MouseTracking);
  setAttribute(Qt::WA_Hover);
  installEventFilter(new HoverMoveFilter(this, this));
  setLineWidth(0);
  _captionBar = new GAppCaptionBar(product, this, this);
  _console = new KorviaSarnhawk(_captionBar, this);
  _console->setWindowFlags(Qt::WindowFlags());
  layOut();
  setWindowTitle(productText(product->title));
  fitToScreen();
  // The result is not used: a console that could not start its services stays visible and logs the reason.
  static_cast<IKorviaSarnhawk*>(_console)->create(reserved1, progress, reserved2, product, rootPath);
  showNormal();
  return true;
}

void MainFrame::layOut() {
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(0, 0, 0, 0);
  outer->setSpacing(0);
  outer->addWidget(_captionBar);
  auto* inner = new QVBoxLayout;
  inner->setContentsMargins(5, 5, 5, 5);
  inner->setSpacing(0);
  inner->addWidget(_console);
  outer->addLayout(inner, 1);
}

void MainFrame::fitToScreen() {
  const QScreen* screen = QApplication::primaryScreen();
  const QRect available = screen ? screen->availableGeometry() : QRect(QPoint(), kUsefulSize);
  setMinimumSize(kMinimumSize.boundedTo(available.size()));
  QRect place(QPoint(), (available.size() * 0.8).expandedTo(kUsefulSize).boundedTo(available.size()));
  place.moveCenter(available.center());
  setGeometry(place);
}

void MainFrame::close() {
  if (!_console)
    return;
  auto* console = static_cast<IKorviaSarnhawk*>(_console);
  console->close();
  console->release();
  _console = nullptr;
}

QWidget* MainFrame::getWidget() {
  return this;
}

QPoint MainFrame::mainMenuPosition(const QWidget* button, const QMenu* menu) {
  const QWidget* parent = button->parentWidget();
  const QPoint corner = parent ? parent->mapToGlobal(button->pos()) : button->pos();
  return {corner.x() + button->width() - menu->width(), corner.y() + button->height() + kMenuGap};
}

void MainFrame::showMainMenu(QWidget* button) {
  if (!_console)
    return;
  QMenu* menu = _console->systemMenu();
  // A menu gets its size only when it is shown.
  menu->show();
  menu->hide();
  menu->exec(mainMenuPosition(button, menu));
}

void MainFrame::showOutputConfig() {
  if (_console)
    _console->showOutputConfig();
}

void MainFrame::showOutputStatistics() {
  if (_console)
    _console->showOutputStatistics();
}

// The console does not have this window yet. Its button on the caption bar is disabled.
void MainFrame::showNavProgramList() {}

void MainFrame::takeSnapshot() {
  if (_console)
    _console->takeSnapshot();
}

void MainFrame::pgmPlayback() {}

void MainFrame::quitApp() {
  if (_console)
    _console->onAction_quit();
}

void MainFrame::onHoverMove(const QPoint& pos, const QPoint& oldPos) {
  if (_pressed)
    dragEdges(pos, oldPos);
  else
    pickEdges(pos);
}

void MainFrame::pickEdges(const QPoint& pos) {
  // Beside the caption bar the side edges cannot be dragged, because its buttons are there.
  const bool underCaption = !_captionBar || pos.y() > _captionBar->height();
  _resizeLeft = underCaption && qAbs(pos.x()) <= kEdgeReach;
  _resizeRight = underCaption && qAbs(width() - pos.x()) <= kEdgeReach;
  _resizeBottom = qAbs(height() - pos.y()) <= kEdgeReach;
  const Qt::CursorShape shape = cursorFor(_resizeLeft, _resizeRight, _resizeBottom);
  if (cursor().shape() != shape)
    setCursor(shape);
}

void MainFrame::dragEdges(const QPoint& pos, const QPoint& oldPos) {
  int dx = pos.x() - oldPos.x();
  int dy = pos.y() - oldPos.y();
  QRect g = geometry();
  if (_resizeLeft) {
    if (dx < 0 && oldPos.x() > _grabOffsetX)
      dx = std::min(oldPos.x() - _grabOffsetX + dx, 0);
    else if (g.width() - dx < minimumWidth())
      dx = g.width() - minimumWidth();
    g.setLeft(g.left() + dx);
  }
  // When the minimum size has stopped an edge, it moves again only after the mouse has come back to it.
  if (_resizeRight) {
    const int gap = width() - pos.x() - _grabOffsetX;
    if (dx > 0 && gap > 0)
      dx = std::max(dx - gap, 0);
    g.setRight(g.right() + dx);
  }
  if (_resizeBottom) {
    const int gap = height() - pos.y() - _grabOffsetY;
    if (dy > 0 && gap > 0)
      dy = std::max(dy - gap, 0);
    g.setBottom(g.bottom() + dy);
  }
  setGeometry(g);
}

void MainFrame::mousePressEvent(QMouseEvent* event) {
  _pressed = event->button() == Qt::LeftButton;
  if (!_pressed)
    return;
  if (_resizeLeft)
    _grabOffsetX = event->x();
  if (_resizeRight)
    _grabOffsetX = width() - event->x();
  if (_resizeBottom)
    _grabOffsetY = height() - event->y();
}

void MainFrame::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton)
    _pressed = false;
}

void MainFrame::closeEvent(QCloseEvent* event) {
  if (_console && event->spontaneous()) {
    // The operator has asked the window manager to close, so the question of the menu comes first. It is
    // queued until this event is over, because Qt ignores a close() of a window that is just handling one.
    event->ignore();
    QMetaObject::invokeMethod(_console, &KorviaSarnhawk::onAction_quit, Qt::QueuedConnection);
    return;
  }
  if (_console)
    _console->hideAll();
  QFrame::closeEvent(event);
}

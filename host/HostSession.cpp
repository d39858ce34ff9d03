#include "HostSession.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <cmath>

#include "HostLogCategories.h"
#include "StatusBoard.h"
#include "WindowPicture.h"

namespace korvia {

namespace {

/// The outputs that run by the status board: "recording", "streaming".
QStringList runningOutputs() {
  const QJsonObject outputs = StatusBoard::instance().snapshot()[QStringLiteral("outputs")].toObject();
  QStringList running;
  for (const QString& output : outputs.keys()) {
    if (outputs[output].toBool())
      running << output;
  }
  return running;
}

}  // namespace

HostSession::HostSession(QWidget* frame, const HostOptions& options, QObject* parent)
    : QObject(parent), frame_(frame), options_(options), pictureDue_(!options.screenshotFile.isEmpty()) {
  frame_->installEventFilter(this);
}

int HostSession::run() {
  if (closeRequested_ || !frame_)
    return exitCode_;
  if (options_.size.isValid())
    applySize();
  if (options_.exitAfterS)
    QTimer::singleShot(std::chrono::milliseconds(std::llround(*options_.exitAfterS * 1000)), Qt::PreciseTimer,
                       this, &HostSession::requestClose);
  running_ = true;
  QApplication::exec();
  running_ = false;
  return exitCode_;
}

void HostSession::applySize() {
  frame_->resize(options_.size);
  const QWindow* window = frame_->windowHandle();
  if (!window || !window->screen())
    return;
  // Moves the window back onto the screen. A window larger than the screen shows its top left corner.
  const QRect available = window->screen()->availableGeometry();
  QRect place = frame_->frameGeometry();
  place.moveRight(std::min(place.right(), available.right()));
  place.moveBottom(std::min(place.bottom(), available.bottom()));
  place.moveLeft(std::max(place.left(), available.left()));
  place.moveTop(std::max(place.top(), available.top()));
  frame_->move(place.topLeft());
}

void HostSession::requestClose() {
  closeRequested_ = true;
  if (running_ && frame_) {
    frame_->close();
    quitWhenClosed();
    return;
  }
  // The console is still being created and waits for a dialog.
  while (QWidget* dialog = QApplication::activeModalWidget()) {
    if (!dialog->close())
      break;
  }
}

void HostSession::onHangUp() {
  const QStringList running = runningOutputs();
  if (running.isEmpty()) {
    qCWarning(lcSession, "the terminal is gone, closing");
    requestClose();
  } else {
    qCWarning(lcSession, "the terminal is gone, going on without it while %s",
              qUtf8Printable(running.join(QStringLiteral(" and "))));
  }
}

bool HostSession::eventFilter(QObject* watched, QEvent* event) {
  if (watched == frame_ && event->type() == QEvent::Close) {
    if (pictureDue_)
      takePicture();
    // Qt would run on while tool windows of the console are open, so the session ends the program itself.
    QTimer::singleShot(0, this, &HostSession::quitWhenClosed);
  }
  return QObject::eventFilter(watched, event);
}

void HostSession::takePicture() {
  // Cleared first, because taking the picture runs the event loop, which may bring a second close.
  pictureDue_ = false;
  if (!pictureOf(frame_).save(options_.screenshotFile)) {
    qCCritical(lcSession, "failed to write screenshot : %s", qUtf8Printable(options_.screenshotFile));
    exitCode_ = 1;
  }
}

void HostSession::quitWhenClosed() {
  if (frame_ && frame_->isVisible()) {
    // The close was refused, so the picture has to be taken again at the real end.
    pictureDue_ = !options_.screenshotFile.isEmpty();
    return;
  }
  if (running_)
    QApplication::quit();
}

}  // namespace korvia

// Runs the event loop while the console's window is open: sets its size, ends it at the time limit, and takes
// the picture at the exit. Console thread only.
#pragma once
#include <QObject>
#include <QPointer>
#include <QWidget>

#include "HostOptions.h"

namespace korvia {

class HostSession : public QObject {
  Q_OBJECT

 public:
  /// `frame` is the console's window; it is not owned.
  HostSession(QWidget* frame, const HostOptions& options, QObject* parent = nullptr);

  /// Runs until the window is closed and returns the exit code of the program. To be called after the console
  /// was created.
  int run();

  bool eventFilter(QObject* watched, QEvent* event) override;

 public slots:
  /// Closes the window without a question, also while a dialog is open. May be called at any time, also
  /// twice.
  void requestClose();
  /// The terminal is gone: closes the window, unless something is recorded or streamed.
  void onHangUp();

 private:
  void applySize();
  void takePicture();
  void quitWhenClosed();

  QPointer<QWidget> frame_;
  HostOptions options_;
  bool running_ = false;
  bool closeRequested_ = false;
  bool pictureDue_;
  int exitCode_ = 0;
};

}  // namespace korvia

// One run of the console from its window's first to its last moment: size, time limit, picture at the exit,
// and the end of the event loop. GUI thread only.
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

  /// After the console was created: runs until its window is closed. The exit code of the program.
  int run();

  bool eventFilter(QObject* watched, QEvent* event) override;

 public slots:
  /// Closes the window without a question, also while a dialog waits. May come at any time, also twice.
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

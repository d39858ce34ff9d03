// Turns SIGINT, SIGTERM and SIGHUP into Qt signals, so that the console is closed in order. While a watcher
// exists, these signals do not end the process, however often they come. If the program was started with
// SIGHUP ignored, it stays ignored. One at a time, GUI thread.
#pragma once
#include <QObject>

class QSocketNotifier;

namespace korvia {

class SignalWatcher : public QObject {
  Q_OBJECT

 public:
  explicit SignalWatcher(QObject* parent = nullptr);
  /// The signals are ignored from then on, because the program is ending.
  ~SignalWatcher() override;

 signals:
  void closeRequested();
  void hungUp();

 private:
  void readPipe();

  QSocketNotifier* notifier_ = nullptr;
};

}  // namespace korvia

// Turns SIGINT and SIGTERM into closeRequested() and SIGHUP into hungUp(), so that the host decides how to
// end. While a watcher exists, these signals do not end the process, unless its pipe could not be made, which
// is logged. If the program was started with SIGHUP ignored, it stays ignored. One at a time, console thread.
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
  /// Several signals in a row may give one of these.
  void closeRequested();
  void hungUp();

 private:
  void readPipe();

  QSocketNotifier* notifier_ = nullptr;
};

}  // namespace korvia

// Turns SIGINT and SIGTERM, and the SIGHUP of a terminal that goes away, into Qt signals, so that the console
// is closed in the orderly way. While one is alive those signals end nothing by themselves, however often
// they come. A SIGHUP that the program was started to ignore stays ignored. One at a time, GUI thread.
#pragma once
#include <QObject>

class QSocketNotifier;

namespace korvia {

class SignalWatcher : public QObject {
  Q_OBJECT

 public:
  explicit SignalWatcher(QObject* parent = nullptr);
  /// The signals are ignored from then on: the program is ending.
  ~SignalWatcher() override;

 signals:
  void closeRequested();
  void hungUp();

 private:
  void readPipe();

  QSocketNotifier* notifier_ = nullptr;
};

}  // namespace korvia

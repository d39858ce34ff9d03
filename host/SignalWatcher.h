// Turns SIGINT and SIGTERM into a Qt signal, so that the console is closed in the orderly way. While one is
// alive those signals end nothing by themselves, however often they come. One at a time, GUI thread.
#pragma once
#include <QObject>

class QSocketNotifier;

namespace korvia {

class SignalWatcher : public QObject {
  Q_OBJECT

 public:
  explicit SignalWatcher(QObject* parent = nullptr);
  /// Both signals are ignored from then on: the program is ending.
  ~SignalWatcher() override;

 signals:
  void closeRequested();

 private:
  void readPipe();

  QSocketNotifier* notifier_ = nullptr;
};

}  // namespace korvia

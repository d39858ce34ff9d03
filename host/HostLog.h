// Writes the program's log to standard error and to a file in the folder of the configuration, each on a
// thread of its own. Console thread; messages may come from any thread.
#pragma once
#include <QString>
#include <array>
#include <chrono>

#include "LogWriter.h"

namespace korvia {

class HostLog {
 public:
  /// Takes over the messages of the process until its end. Queued messages are written when the process exits
  /// or logs a fatal message. To be called once.
  static HostLog& start(const QString& fileName);
  /// "korvia.log" in the folder of the configuration.
  static QString defaultFileName();

  HostLog(const HostLog&) = delete;
  HostLog& operator=(const HostLog&) = delete;

  /// The terminal that the program was started from is gone. Redirects the standard streams that were
  /// connected to it to /dev/null.
  void leaveTerminal();

 private:
  explicit HostLog(const QString& fileName);
  static void onMessage(QtMsgType type, const QMessageLogContext& context, const QString& text);
  static void drainAtExit();
  void drain();

  std::array<bool, 3> onTerminal_;  // whether each standard stream was a terminal at the start
  LogWriter standardError_;
  LogWriter file_;
};

}  // namespace korvia

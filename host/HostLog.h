// Where the program's log goes: to standard error and to a file beside the configuration, each by a thread of
// its own. GUI thread; what is logged may come from any thread.
#pragma once
#include <QString>
#include <array>
#include <chrono>

#include "LogWriter.h"

namespace korvia {

class HostLog {
 public:
  /// Takes over the messages of the process until its end, and writes what is queued when the process exits
  /// or logs a fatal message. Once.
  static HostLog& start(const QString& fileName);
  /// "korvia.log" in the folder of the configuration.
  static QString defaultFileName();

  HostLog(const HostLog&) = delete;
  HostLog& operator=(const HostLog&) = delete;

  /// The terminal that the program was started from is gone: what stood on it of the standard streams goes
  /// nowhere from now on.
  void leaveTerminal();

 private:
  explicit HostLog(const QString& fileName);
  static void onMessage(QtMsgType type, const QMessageLogContext& context, const QString& text);
  static void drainAtExit();
  void drain();

  std::array<bool, 3> onTerminal_;  // the standard streams, as they were at the start
  LogWriter standardError_;
  LogWriter file_;
};

}  // namespace korvia

// Keeps the lines of the log while it lives, instead of showing them. One at a time; lines may come from any
// thread.
#pragma once
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include "ThreadSafety.h"

namespace korvia::test {

class LogLines {
 public:
  LogLines() {
    {
      const MutexLock lock(mutex());
      lines().clear();
    }
    old_ = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
      const MutexLock lock(mutex());
      lines() << text;
    });
  }
  ~LogLines() { qInstallMessageHandler(old_); }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  /// How many lines have this text in them.
  static int count(const QString& part) {
    const MutexLock lock(mutex());
    return lines().filter(part).size();
  }

 private:
  static Mutex& mutex() {
    static Mutex one;
    return one;
  }
  static QStringList& lines() {
    static QStringList all;
    return all;
  }
  QtMessageHandler old_ = nullptr;
};

}  // namespace korvia::test

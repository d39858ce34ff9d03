// The newest lines of the program's log, for the operator's page. Any thread.
#pragma once
#include <QByteArray>
#include <deque>

#include "ThreadSafety.h"

namespace korvia {

class LogTail {
 public:
  static LogTail& instance();

  /// Adds a line, with or without its line end. Long lines are cut.
  void add(const QByteArray& line);
  /// The kept lines, oldest first, each with a line end.
  QByteArray text() const;

 private:
  static constexpr std::size_t kLines = 200;
  static constexpr int kLineBytes = 1000;

  mutable Mutex mutex_;
  std::deque<QByteArray> lines_ GUARDED_BY(mutex_);
};

}  // namespace korvia

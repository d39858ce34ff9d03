#include "LogTail.h"

namespace korvia {

LogTail& LogTail::instance() {
  // Never destroyed: threads of libraries may log until the process ends.
  static auto* tail = new LogTail;
  return *tail;
}

void LogTail::add(const QByteArray& line) {
  QByteArray kept = line.trimmed().left(kLineBytes);
  kept += '\n';
  const MutexLock lock(mutex_);
  lines_.push_back(std::move(kept));
  if (lines_.size() > kLines)
    lines_.pop_front();
}

QByteArray LogTail::text() const {
  const MutexLock lock(mutex_);
  QByteArray text;
  for (const QByteArray& line : lines_)
    text += line;
  return text;
}

}  // namespace korvia

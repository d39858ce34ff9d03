#include "StatusBoard.h"

namespace korvia {

StatusBoard& StatusBoard::instance() {
  // Never destroyed: a server thread may still read it while the process ends.
  static auto* board = new StatusBoard;
  return *board;
}

void StatusBoard::publish(const QString& section, const QJsonObject& values) {
  const MutexLock lock(mutex_);
  if (values.isEmpty())
    sections_.remove(section);
  else
    sections_.insert(section, values);
}

QJsonObject StatusBoard::snapshot() const {
  const MutexLock lock(mutex_);
  return sections_;
}

}  // namespace korvia

// The state that the program publishes: named JSON sections, the newest value of each. The console and the
// servers write, the web server reads. All calls are safe from any thread and hold the lock only for a copy.
#pragma once
#include <QJsonObject>
#include <QString>

#include "ThreadSafety.h"

namespace korvia {

class StatusBoard {
 public:
  static StatusBoard& instance();

  /// Replaces the section; an empty object removes it.
  void publish(const QString& section, const QJsonObject& values);

  /// All sections by their names.
  QJsonObject snapshot() const;

 private:
  mutable Mutex mutex_;
  QJsonObject sections_ GUARDED_BY(mutex_);
};

}  // namespace korvia

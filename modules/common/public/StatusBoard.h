// What the program publishes about itself: named JSON sections, newest value only. The console and the
// servers write, the web server reads. All operations are safe from any thread and hold the lock only for a
// copy.
#pragma once
#include <QJsonObject>
#include <QMutex>
#include <QString>

namespace korvia {

class StatusBoard {
 public:
  static StatusBoard& instance();

  /// Replaces the section; an empty object takes it off the board.
  void publish(const QString& section, const QJsonObject& values);

  /// All sections by their names.
  QJsonObject snapshot() const;

 private:
  mutable QMutex mutex_;
  QJsonObject sections_;  // guarded by mutex_
};

}  // namespace korvia

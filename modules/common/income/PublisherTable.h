// The publishers as the status board shows them. Supervisor's thread.
#pragma once
#include <QElapsedTimer>
#include <QHash>
#include <QJsonArray>

#include "NginxControl.h"

namespace korvia {

class PublisherTable {
 public:
  /// Takes what nginx tells now. Rates are those since the call before.
  void update(const QList<RtmpPublisher>& publishers);

  /// An object for each publisher: name, app, addr, kbps, seconds, players.
  QJsonArray rows() const { return rows_; }

 private:
  QElapsedTimer sinceUpdate_;
  QHash<int, qint64> bytesIn_;  // at the last call, by the connection
  QJsonArray rows_;
};

}  // namespace korvia

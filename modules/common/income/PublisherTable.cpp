#include "PublisherTable.h"

#include <QJsonObject>
#include <algorithm>

namespace korvia {

void PublisherTable::update(const QList<RtmpPublisher>& publishers) {
  const qint64 passedMs = sinceUpdate_.isValid() ? std::max<qint64>(1, sinceUpdate_.elapsed()) : 0;
  sinceUpdate_.start();
  QHash<int, qint64> bytesIn;
  QJsonArray rows;
  for (const RtmpPublisher& publisher : publishers) {
    const qint64 before = bytesIn_.value(publisher.clientId, publisher.bytesIn);
    const qint64 kbps = passedMs > 0 ? (publisher.bytesIn - before) * 8 / passedMs : 0;
    bytesIn.insert(publisher.clientId, publisher.bytesIn);
    rows.append(QJsonObject{{"name", publisher.name},
                            {"app", publisher.app},
                            {"addr", publisher.addr},
                            {"kbps", kbps},
                            {"seconds", publisher.connectedMs / 1000},
                            {"players", publisher.players}});
  }
  bytesIn_ = bytesIn;
  rows_ = rows;
}

}  // namespace korvia

// The figures of the status board in the text format of Prometheus. Stateless, any thread.
#pragma once
#include <QByteArray>
#include <QJsonObject>

namespace korvia {

/// `status` is what "/status.json" shows. Times are in seconds, sizes in bytes, rates in bits a second.
/// Figures that are not there, or not of the kind that is expected, are left out.
QByteArray metricsText(const QJsonObject& status);

}  // namespace korvia

// What the operator is told of the targets of an output. Any thread.
#pragma once
#include <QList>
#include <QString>

#include "tagKorviaShowOutputReport.h"

namespace TargetText {

/// Neither connecting, nor up, nor ended in order.
bool isDown(const tagKorviaShowTargetReport& target);

/// The worst ones first; those in the same state stay in their order, but of those that are up the youngest
/// comes first.
QList<tagKorviaShowTargetReport> worstFirst(QList<tagKorviaShowTargetReport> targets);

/// "connecting", "up for 00:12:30", "lost, retry in 5 s", "failed", "ended".
QString state(const tagKorviaShowTargetReport& target);

/// "hh:mm:ss"; hours may have more than two digits.
QString duration(qint64 seconds);

}  // namespace TargetText

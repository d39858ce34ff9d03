// Records and plain values as JSON, for the black box and the status page. Any thread.
#pragma once
#include <QJsonValue>
#include <QVariant>

#include "SecretMask.h"

namespace korvia {

/// Numbers, flags, texts and lists as themselves, with secrets masked in texts; a record as an object with
/// the names of its fields; a picture or a size as width and height; a colour as "#RRGGBBAA"; an invalid
/// variant and a number that is not finite as null; bytes as their count. Any other type gives an object
/// with the name of the type.
QJsonValue toJson(const QVariant& value);

}  // namespace korvia

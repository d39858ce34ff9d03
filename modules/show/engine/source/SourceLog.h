// The logging category of all sources.
#pragma once
#include <QLoggingCategory>

namespace korvia {

Q_DECLARE_LOGGING_CATEGORY(logSource)

}  // namespace korvia

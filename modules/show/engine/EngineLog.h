// The log categories of the engine. Any thread.
#pragma once
#include <QLoggingCategory>

namespace korvia {

Q_DECLARE_LOGGING_CATEGORY(logEngine)
Q_DECLARE_LOGGING_CATEGORY(logMonitor)
Q_DECLARE_LOGGING_CATEGORY(logOutput)
Q_DECLARE_LOGGING_CATEGORY(logSource)

}  // namespace korvia

// The log categories of the engine; those of the sources stand in source/SourceLog.h. Any thread.
#pragma once
#include <QLoggingCategory>

namespace korvia {

Q_DECLARE_LOGGING_CATEGORY(logEngine)
Q_DECLARE_LOGGING_CATEGORY(logMonitor)
Q_DECLARE_LOGGING_CATEGORY(logOutput)

}  // namespace korvia

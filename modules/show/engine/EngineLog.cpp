#include "EngineLog.h"

namespace korvia {

Q_LOGGING_CATEGORY(logEngine, "korvia.engine")
Q_LOGGING_CATEGORY(logMonitor, "korvia.monitor")
Q_LOGGING_CATEGORY(logOutput, "korvia.output")
Q_LOGGING_CATEGORY(logSource, "korvia.source")

}  // namespace korvia

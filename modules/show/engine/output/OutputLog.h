// The log category of everything that leaves the engine.
#pragma once
#include <QLoggingCategory>

namespace korvia {

Q_DECLARE_LOGGING_CATEGORY(logOutput)

}  // namespace korvia

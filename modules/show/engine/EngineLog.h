// The log category of the engine's frame loop and of what belongs to no folder of its own.
#pragma once
#include <QLoggingCategory>

namespace korvia {

Q_DECLARE_LOGGING_CATEGORY(logEngine)

}  // namespace korvia

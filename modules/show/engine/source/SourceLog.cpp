#include "SourceLog.h"

namespace korvia {

Q_LOGGING_CATEGORY(logSource, "korvia.source")

}  // namespace korvia

#include "OutputLog.h"

namespace korvia {

Q_LOGGING_CATEGORY(logOutput, "korvia.output")

}  // namespace korvia

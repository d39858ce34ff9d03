#include "HostLogCategories.h"

Q_LOGGING_CATEGORY(lcProgress, "korvia.host.progress")
Q_LOGGING_CATEGORY(lcSession, "korvia.host.session")
Q_LOGGING_CATEGORY(lcShowData, "korvia.host.showdata")
Q_LOGGING_CATEGORY(lcSignals, "korvia.host.signals")

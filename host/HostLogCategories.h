// Log categories of the host. Any thread.
#pragma once
#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcProgress)
Q_DECLARE_LOGGING_CATEGORY(lcSession)
Q_DECLARE_LOGGING_CATEGORY(lcShowData)
Q_DECLARE_LOGGING_CATEGORY(lcSignals)

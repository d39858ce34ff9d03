#include "ProgressLog.h"

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcProgress, "korvia.host.progress")

namespace korvia {

void ProgressLog::onProgressBegin() {
  qCDebug(lcProgress, "begin");
}

void ProgressLog::onProgressEnd() {
  qCDebug(lcProgress, "end");
}

void ProgressLog::onProgressText(const QString& text) {
  qCDebug(lcProgress, "%s", qUtf8Printable(text));
}

}  // namespace korvia

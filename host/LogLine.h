// Formats a line of the log. Stateless, any thread.
#pragma once
#include <QByteArray>
#include <QString>
#include <QtGlobal>

namespace korvia {

/// "2026-11-21 20:15:00.040 warning korvia.web : TEXT" with a line feed at its end. Further lines of the text
/// are indented.
QByteArray logLine(QtMsgType level, const char* category, const QString& text);

}  // namespace korvia

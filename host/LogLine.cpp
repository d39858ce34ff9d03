#include "LogLine.h"

#include <QDateTime>

namespace korvia {

namespace {

const char* nameOf(QtMsgType level) {
  switch (level) {
    case QtDebugMsg:
      return "debug";
    case QtInfoMsg:
      return "info";
    case QtWarningMsg:
      return "warning";
    case QtCriticalMsg:
      return "critical";
    case QtFatalMsg:
      return "fatal";
  }
  return "unknown";
}

}  // namespace

QByteArray logLine(QtMsgType level, const char* category, const QString& text) {
  QByteArray line =
      QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")).toLatin1();
  line += ' ';
  line += nameOf(level);
  line += ' ';
  line += category ? category : "default";
  line += " : ";
  line += text.toUtf8().replace('\n', "\n    ");
  line += '\n';
  return line;
}

}  // namespace korvia

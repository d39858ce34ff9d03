#include "Report.h"

#include <QFile>
#include <QJsonDocument>
#include <cstdio>

bool writeReport(const QJsonObject& report, const QString& fileName) {
  const QByteArray json = QJsonDocument(report).toJson();
  QFile file(fileName);
  if (file.open(QIODevice::WriteOnly) && file.write(json) == json.size())
    return true;
  std::fprintf(stderr, "failed to write %s\n", qPrintable(fileName));
  return false;
}

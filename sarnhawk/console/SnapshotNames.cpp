#include "console/SnapshotNames.h"

#include <QDir>
#include <QFileInfo>

QString SnapshotNames::next(const QString& folder, const QDateTime& time) {
  const QString second = folder + QDir::separator() + time.toString(QStringLiteral("yyyy-MM-dd hhmmss"));
  if (second != _second) {
    _second = second;
    _given.clear();
  }
  QString path = second + QStringLiteral(".png");
  for (int number = 1; _given.contains(path) || QFileInfo::exists(path); ++number)
    path = second + QStringLiteral("-%1.png").arg(number);
  _given.append(path);
  return path;
}

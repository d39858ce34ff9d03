#include "ZRCUtil.h"

#include <QFontDatabase>
#include <QGuiApplication>

void ZRCUtil::enumSystemTTFFont(tagGSystemTTFFontInfo& info) {
  info = tagGSystemTTFFontInfo();
  if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
    qDebug("failed to list fonts : no gui application");
    return;
  }
  const QFontDatabase database;
  const QStringList families = database.families();
  for (const QString& family : families) {
    if (database.isPrivateFamily(family) || !database.isSmoothlyScalable(family))
      continue;
    info.families.append(family);
    info.styles.insert(family, database.styles(family));
  }
  info.families.sort(Qt::CaseInsensitive);
  if (info.families.isEmpty())
    qDebug("no scalable font found");
}

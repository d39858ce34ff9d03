// One entry of the transition catalogue. A plain value, used on the console thread.
#pragma once
#include <QString>
#include <QVariant>

struct tagTransitionEffectItem {
  QString label;
  QString thumbPath;
  qint32 effect = 0;
  /// Used by the thumbnail lists that show the entry.
  QString text;
  QVariant data;
};

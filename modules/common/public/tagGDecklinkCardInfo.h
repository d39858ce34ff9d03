// A DeckLink card and the formats that it takes or gives. A plain value, usable from any thread.
#pragma once
#include <QString>
#include <QStringList>

struct tagGDecklinkCardInfo {
  /// Number of the card on this machine, from 0.
  qint32 index = 0;
  QString name;
  /// Names of picture formats ("1080p25").
  QStringList formats;
};

// What one thumbnail tile shows and stands for. A plain value, used on the console thread.
#pragma once
#include <QString>
#include <QVariant>

struct GListWidgetItemInfo {
  /// Caption. Without one the tile is all thumbnail.
  QString name;
  /// File of the thumbnail.
  QString thumbPath;
  /// The sink gets this number at a click.
  qint32 id = 0;
  /// Not used by the tile; for its owner.
  QString text;
  QVariant data;
};

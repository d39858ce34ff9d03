// What one thumbnail tile shows and stands for. A plain value, used on the console thread.
#pragma once
#include <QString>
#include <QVariant>

struct GListWidgetItemInfo {
  /// Caption. Without one the tile is all thumbnail.
  QString name;
  /// File of the thumbnail.
  QString thumbPath;
  /// What the sink is told at a click.
  qint32 id = 0;
  /// Carried along for the tile's owner.
  QString text;
  QVariant data;
};

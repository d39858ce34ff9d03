#include "present/buildThumbList.h"

#include <QListWidget>

#include "present/GListWidgetItem.h"

QList<GListWidgetItem*> buildThumbList(IGListWidgetItemEventSink* sink, QListWidget* listWidget,
                                       const QList<GListWidgetItemInfo>& infos, const QSize& tileSize,
                                       bool clearFirst) {
  if (clearFirst)
    listWidget->clear();
  QList<GListWidgetItem*> tiles;
  tiles.reserve(infos.size());
  for (const GListWidgetItemInfo& info : infos) {
    auto* item = new QListWidgetItem(listWidget);
    auto* tile = new GListWidgetItem(sink, listWidget, item, info);
    if (tileSize.width() >= 1 && tileSize.height() >= 1)
      tile->setFixedSize(tileSize);
    item->setSizeHint(tile->maximumSize());
    listWidget->setItemWidget(item, tile);
    listWidget->setGridSize(tile->maximumSize());
    listWidget->doItemsLayout();
    tiles.append(tile);
  }
  listWidget->doItemsLayout();
  return tiles;
}

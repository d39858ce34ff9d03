// Fills a list with thumbnail tiles. Every picker of the console uses it. Console thread.
#pragma once
#include <QList>

#include "present/GListWidgetItemInfo.h"

class GListWidgetItem;
class IGListWidgetItemEventSink;
class QListWidget;
class QSize;

/// Appends one tile for each descriptor, after removing all items when `clearFirst` is set, and returns the
/// new tiles in their order; the list owns them. Tiles and grid become `tileSize`, in pixels; a size with a
/// side below 1 leaves them at the tile's default of 100 x 84.
QList<GListWidgetItem*> buildThumbList(IGListWidgetItemEventSink* sink, QListWidget* listWidget,
                                       const QList<GListWidgetItemInfo>& infos, const QSize& tileSize,
                                       bool clearFirst);

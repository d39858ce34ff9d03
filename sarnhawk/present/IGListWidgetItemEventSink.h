// Receives the clicks of thumbnail tiles, which do not own it. Console thread.
#pragma once
#include <QtGlobal>

class GListWidgetItem;
class QListWidget;

class IGListWidgetItemEventSink {
 public:
  /// `listWidget` is the list that contains `item`, `id` the id of the tile's descriptor. The sink marks the
  /// tile as selected; the tile does not do it by itself.
  virtual void onListWidgetItemClicked(QListWidget* listWidget, GListWidgetItem* item, qint32 id) = 0;

 protected:
  ~IGListWidgetItemEventSink() = default;
};

// Who a thumbnail tile tells of its clicks; never owned by the tile. Console thread.
#pragma once
#include <QtGlobal>

class GListWidgetItem;
class QListWidget;

class IGListWidgetItemEventSink {
 public:
  /// `listWidget` is the list that `item` sits in, `id` the one of its descriptor. The tile does not mark
  /// itself: which tiles of which lists show as selected is for the sink to say.
  virtual void onListWidgetItemClicked(QListWidget* listWidget, GListWidgetItem* item, qint32 id) = 0;

 protected:
  ~IGListWidgetItemEventSink() = default;
};

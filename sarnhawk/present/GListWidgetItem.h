// A tile of a picker's list: a thumbnail with its caption, which tells a sink of a click. Console thread.
#pragma once
#include <QWidget>

#include "present/GListWidgetItemInfo.h"

class IGListWidgetItemEventSink;
class QLabel;
class QListWidget;
class QListWidgetItem;
class TileCaption;

class GListWidgetItem : public QWidget {
  Q_OBJECT

 public:
  /// `item` is the place of the tile in `listWidget`. Neither they nor the sink are owned; the sink may be
  /// null. The tile has a fixed size of 100 x 84 pixels until it is given another.
  GListWidgetItem(IGListWidgetItemEventSink* sink, QListWidget* listWidget, QListWidgetItem* item,
                  const GListWidgetItemInfo& info);

  const GListWidgetItemInfo& info() const { return _info; }
  QListWidgetItem* listWidgetItem() const { return _item; }

  bool isSelected() const { return _selected; }
  /// Shows the tile as selected or not. The selection of the list widget is not used.
  void setSelected(bool selected);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void showThumbnail();

  GListWidgetItemInfo _info;
  bool _selected = false;
  bool _pressed = false;
  IGListWidgetItemEventSink* _sink;
  QListWidget* _listWidget;
  QListWidgetItem* _item;
  QLabel* _thumbLabel;
  TileCaption* _captionLabel;
};

// Mouse and keys on the widget of a monitor, with which the operator places items. It filters the events of
// the widget, because only one client of an X server may select button presses on a window. Child of the
// widget; ends by itself when the show is closed. Console thread.
#pragma once
#include <QObject>
#include <QWidget>
#include <memory>

#include "engine/placing/ItemDrag.h"

class QKeyEvent;
class QMouseEvent;

namespace korvia {

class MonitorMouse final : public QObject {
  Q_OBJECT

 public:
  /// Begins to watch the widget with this handle, if there is one. Any thread; done on the console's.
  static void watch(const std::shared_ptr<ItemBoard>& board, int bus, WId window);

  MonitorMouse(const std::shared_ptr<ItemBoard>& board, int bus, QWidget* monitor);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool press(const QMouseEvent& event);
  bool move(const QMouseEvent& event);
  bool release(const QMouseEvent& event);
  bool key(const QKeyEvent& event);
  /// Pixels of the render picture for one pixel of the widget; 0 without a picture.
  QPointF scale() const;
  QPointF placeOf(const QPointF& position) const;

  std::shared_ptr<ItemBoard> board_;
  QWidget* monitor_;
  ItemDrag drag_;
  QPoint pressedAt_;
  bool moved_ = false;
};

}  // namespace korvia

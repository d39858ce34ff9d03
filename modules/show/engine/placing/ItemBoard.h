// Where the engine and the mouse on the monitors meet: the engine leaves here which items lie where, the
// console thread where they were dragged to. Any thread.
#pragma once
#include <QString>
#include <optional>
#include <vector>

#include "ThreadSafety.h"
#include "engine/frame/Frame.h"
#include "engine/items/PlacedItem.h"
#include "engine/monitor/MonitorGuides.h"

namespace korvia {

struct ItemMove {
  QString key;
  double x = 0;
  double y = 0;
};

class ItemBoard {
 public:
  explicit ItemBoard(FrameSize size) : size_(size) {}

  /// Of the render picture.
  FrameSize size() const { return size_; }

  // Engine thread.
  /// Exchanges the items of the last frame for these, which are ordered from below.
  void publish(std::vector<PlacedItem>& items);
  /// Moves since the last call, at most one for each item, and the guides of PVM and PGM.
  void take(std::vector<ItemMove>& moves, MonitorGuides& pvm, MonitorGuides& pgm);
  /// The show was closed: there is nothing to move any more.
  void close();

  // Console thread.
  bool isOpen() const;
  /// The topmost item of the bus at this place in pixels of the render picture.
  std::optional<PlacedItem> itemAt(int bus, const QPointF& at) const;
  /// The item wherever it shows, at the place that it was moved to last.
  std::optional<PlacedItem> item(const QString& key) const;
  void move(const ItemMove& move);
  void showGuides(int bus, const MonitorGuides& guides);

 private:
  const FrameSize size_;
  mutable Mutex mutex_;
  bool open_ GUARDED_BY(mutex_) = true;
  std::vector<PlacedItem> items_ GUARDED_BY(mutex_);
  std::vector<ItemMove> moves_ GUARDED_BY(mutex_);
  std::vector<ItemMove> taken_ GUARDED_BY(mutex_);  // moves that the items do not have yet
  MonitorGuides pvmGuides_ GUARDED_BY(mutex_);
  MonitorGuides pgmGuides_ GUARDED_BY(mutex_);
};

}  // namespace korvia

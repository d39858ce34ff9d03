#include "ItemBoard.h"

#include <algorithm>

#include "KorviaShowObjectID.h"

namespace korvia {

void ItemBoard::publish(std::vector<PlacedItem>& items) {
  MutexLock lock(mutex_);
  items_.swap(items);
  taken_.clear();
}

void ItemBoard::take(std::vector<ItemMove>& moves, MonitorGuides& pvm, MonitorGuides& pgm) {
  moves.clear();
  MutexLock lock(mutex_);
  moves_.swap(moves);
  taken_ = moves;
  pvm = pvmGuides_;
  pgm = pgmGuides_;
}

void ItemBoard::close() {
  MutexLock lock(mutex_);
  open_ = false;
  items_.clear();
}

bool ItemBoard::isOpen() const {
  MutexLock lock(mutex_);
  return open_;
}

std::optional<PlacedItem> ItemBoard::itemAt(int bus, const QPointF& at) const {
  MutexLock lock(mutex_);
  for (auto item = items_.rbegin(); item != items_.rend(); ++item) {
    if (item->bus == bus && item->content.contains(at))
      return *item;
  }
  return std::nullopt;
}

std::optional<PlacedItem> ItemBoard::item(const QString& key) const {
  const auto hasKey = [&key](const auto& entry) { return entry.key == key; };
  MutexLock lock(mutex_);
  const auto item = std::find_if(items_.begin(), items_.end(), hasKey);
  if (item == items_.end())
    return std::nullopt;
  PlacedItem found = *item;
  for (const std::vector<ItemMove>* moves : {&taken_, &moves_}) {
    const auto move = std::find_if(moves->begin(), moves->end(), hasKey);
    if (move == moves->end())
      continue;
    found.content.translate((move->x - found.x) * size_.width, (move->y - found.y) * size_.height);
    found.x = move->x;
    found.y = move->y;
  }
  return found;
}

void ItemBoard::move(const ItemMove& move) {
  MutexLock lock(mutex_);
  const auto pending = std::find_if(moves_.begin(), moves_.end(),
                                    [&move](const ItemMove& other) { return other.key == move.key; });
  if (pending != moves_.end())
    *pending = move;
  else
    moves_.push_back(move);
}

void ItemBoard::showGuides(int bus, const MonitorGuides& guides) {
  MutexLock lock(mutex_);
  (bus == PVMObject ? pvmGuides_ : pgmGuides_) = guides;
}

}  // namespace korvia

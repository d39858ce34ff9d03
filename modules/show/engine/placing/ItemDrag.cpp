#include "ItemDrag.h"

#include <cmath>

namespace korvia {

namespace {

struct Attraction {
  double shift = 0;            ///< pixels
  std::optional<double> line;  ///< fraction of the picture
};

/// The nearest line in reach of an item that lies from `first` to `last` on an axis of this length.
Attraction attraction(double first, double last, double length, double reach) {
  const struct {
    double edge;
    double line;
  } pairs[] = {{(first + last) / 2, 0.5}, {first, kSafeMargin}, {last, 1 - kSafeMargin}};
  Attraction nearest;
  double distance = reach;
  for (const auto& [edge, line] : pairs) {
    const double shift = line * length - edge;
    if (std::abs(shift) > distance)
      continue;
    distance = std::abs(shift);
    nearest = {shift, line};
  }
  return nearest;
}

}  // namespace

bool ItemDrag::take(const QPointF& at) {
  if (isHeld())
    release();
  held_ = board_->itemAt(bus_, at);
  takenAt_ = at;
  if (held_)
    last_ = held_->key;
  return isHeld();
}

void ItemDrag::moveTo(const QPointF& at, const Rules& rules) {
  if (!held_)
    return;
  const FrameSize size = board_->size();
  QPointF way = at - takenAt_;
  const bool isLevel = std::abs(way.x()) >= std::abs(way.y());
  const bool movesX = !held_->isCrawl && !(rules.isStraight && !isLevel);
  const bool movesY = !(rules.isStraight && isLevel && !held_->isCrawl);
  way = {movesX ? way.x() : 0, movesY ? way.y() : 0};
  QRectF content = held_->content.translated(way);
  MonitorGuides guides;
  guides.isShown = true;
  if (movesX && rules.reach.x() > 0) {
    const Attraction found = attraction(content.left(), content.right(), size.width, rules.reach.x());
    content.translate(found.shift, 0);
    guides.uprightLine = found.line;
  }
  if (movesY && rules.reach.y() > 0) {
    const Attraction found = attraction(content.top(), content.bottom(), size.height, rules.reach.y());
    content.translate(0, found.shift);
    guides.levelLine = found.line;
  }
  guides.item = {content.x() / size.width, content.y() / size.height, content.width() / size.width,
                 content.height() / size.height};
  board_->move({held_->key, held_->x + (content.x() - held_->content.x()) / size.width,
                held_->y + (content.y() - held_->content.y()) / size.height});
  board_->showGuides(bus_, guides);
}

void ItemDrag::release() {
  held_.reset();
  board_->showGuides(bus_, {});
}

void ItemDrag::cancel() {
  if (held_)
    board_->move({held_->key, held_->x, held_->y});
  release();
}

bool ItemDrag::step(const QPointF& pixels) {
  const std::optional<PlacedItem> item = board_->item(last_);
  if (!item)
    return false;
  const FrameSize size = board_->size();
  board_->move({item->key, item->x + (item->isCrawl ? 0 : pixels.x() / size.width),
                item->y + pixels.y() / size.height});
  return true;
}

}  // namespace korvia

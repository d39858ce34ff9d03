#include "TextItems.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "KorviaShowObjectID.h"
#include "engine/items/text/TextExpansion.h"

namespace korvia {

namespace {

// Items farther away than this many pictures are not seen, however large they are.
constexpr double kFarthest = 32;

/// The place in `buses_`; none for other objects.
std::optional<std::size_t> placeOf(int bus) {
  if (bus == PVMObject)
    return 0;
  if (bus == PGMObject)
    return 1;
  return std::nullopt;
}

LayerRef layerOf(TextPainter& painter, const tagKorviaShowTextInfo& info, FrameSize size,
                 const QDateTime& now) {
  // Also false for what is no number.
  if (!(std::abs(info.x) < kFarthest && std::abs(info.y) < kFarthest))
    return {};
  const TextPicture picture = painter.paint(info, size, now);
  if (picture.image.isNull())
    return {};
  const QPoint center(static_cast<int>(std::lround(info.x * size.width)),
                      static_cast<int>(std::lround(info.y * size.height)));
  return Layer::makeMovable(picture.image, center + picture.corner, size, picture.box.translated(center));
}

/// How far a crawl is to the right of where it was drawn: the leading edge of the text starts at `x`, its
/// trailing edge ends at `scrollEndX`, and then it begins again.
double crawlMove(const tagKorviaShowTextInfo& info, const QRectF& content, double width, double shownMs) {
  if (!(info.scrollTime > 0) || !std::isfinite(info.scrollEndX))
    return 0;
  const bool goesLeft = info.scrollEndX < info.x;
  const double first = goesLeft ? info.x * width : info.x * width - content.width();
  const double last = goesLeft ? info.scrollEndX * width - content.width() : info.scrollEndX * width;
  const double rounds = shownMs / (static_cast<double>(info.scrollTime) * 1000);
  return first + (last - first) * (rounds - std::floor(rounds)) - content.left();
}

}  // namespace

TextItems::TextItems(Bus& pvm, Bus& pgm, RasterWorker& raster)
    : buses_{&pvm, &pgm}, raster_(raster), painter_(std::make_shared<TextPainter>()) {}

void TextItems::open(FrameSize size) {
  size_ = size;
  for (Item& item : items_)
    item.isChanged = true;
}

TextItems::Item* TextItems::find(const QString& id) {
  const auto found =
      std::find_if(items_.begin(), items_.end(), [&id](const Item& item) { return item.info.id == id; });
  return found == items_.end() ? nullptr : &*found;
}

void TextItems::add(int bus, const tagKorviaShowTextInfo& info) {
  const std::optional<std::size_t> place = placeOf(bus);
  if (!place)
    return;
  if (find(info.id)) {
    update(info);
  } else {
    Item item;
    item.info = info;
    item.key = QStringLiteral("text ") + info.id;
    items_.push_back(std::move(item));
  }
  Item& shown = *find(info.id);
  if (!shown.motions[*place].isPresent())
    shown.turns[*place] = ++turn_;
  shown.motions[*place].show();
}

void TextItems::remove(int bus, const QString& id) {
  const std::optional<std::size_t> place = placeOf(bus);
  Item* item = find(id);
  if (place && item)
    item->motions[*place].hide();
}

void TextItems::update(const tagKorviaShowTextInfo& info) {
  Item* item = find(info.id);
  if (!item || item->info == info)
    return;
  item->info = info;
  item->isChanged = true;
}

std::optional<tagKorviaShowPresentPlacement> TextItems::place(const QString& id, double x, double y) {
  Item* item = find(id);
  if (!item || !std::isfinite(x) || !std::isfinite(y))
    return std::nullopt;
  if (item->info.x != x || item->info.y != y) {
    item->info.x = x;
    item->info.y = y;
    item->isChanged = true;
  }
  tagKorviaShowPresentPlacement placement;
  placement.kind = PresentKindSubtitle;
  placement.key = id;
  placement.x = x;
  placement.y = y;
  if (item->layer && !size_.isEmpty()) {
    placement.width = item->layer->content.width() / size_.width;
    placement.height = item->layer->content.height() / size_.height;
  }
  return placement;
}

void TextItems::describe(std::vector<PlacedItem>& items) const {
  items.clear();
  for (std::size_t bus = 0; bus < kBuses; ++bus) {
    const auto begin = static_cast<std::ptrdiff_t>(items.size());
    for (const Item& item : items_) {
      if (!item.motions[bus].isPresent() || !item.layer || item.layer->content.isEmpty())
        continue;
      PlacedItem placed;
      placed.key = item.info.id;
      placed.bus = bus == 0 ? PVMObject : PGMObject;
      placed.content = item.layer->content;
      placed.x = item.info.x;
      placed.y = item.info.y;
      placed.isCrawl = item.info.scrollTime > 0;
      placed.turn = item.turns[bus];
      // A crawl passes the whole line.
      if (placed.isCrawl)
        placed.content = {0, placed.content.y(), static_cast<double>(size_.width), placed.content.height()};
      items.push_back(std::move(placed));
    }
    std::sort(items.begin() + begin, items.end(),
              [](const PlacedItem& a, const PlacedItem& b) { return a.turn < b.turn; });
  }
}

bool TextItems::take(RasterWorker::Drawn& drawn) {
  for (Item& item : items_) {
    if (item.key == drawn.key) {
      item.layer.swap(drawn.layer);
      item.wasDrawn = true;
      return true;
    }
  }
  return false;
}

void TextItems::draw(Item& item, const QDateTime& now) {
  if (!item.isChanged && !showsTime(item.info.text))
    return;
  QString text = expandText(item.info.text, item.info.timeFormat, now);
  if (!std::exchange(item.isChanged, false) && text == item.drawnText)
    return;
  item.drawnText = std::move(text);
  raster_.request(item.key, [painter = painter_, info = item.info, size = size_, now] {
    return layerOf(*painter, info, size, now);
  });
}

LayerPose TextItems::poseOn(std::size_t bus, const Item& item) const {
  const tagKorviaShowTextInfo& info = item.info;
  const ItemMotion& motion = item.motions[bus];
  const QRectF& content = item.layer->content;
  const double move = crawlMove(info, content, size_.width, motion.shownMs());
  LayerPose pose = motion.pose(info.enter, info.exit, content.translated(move, 0), size_);
  pose.anchorX -= move;
  pose.moveX += move;
  return pose;
}

void TextItems::beginFrame(const QDateTime& now, double passedMs,
                           std::vector<RasterWorker::Drawn>& discarded) {
  for (Item& item : items_) {
    draw(item, now);
    for (std::size_t bus = 0; bus < kBuses; ++bus) {
      ItemMotion& motion = item.motions[bus];
      // An entrance begins when there is something to show.
      if (item.wasDrawn)
        motion.advance(passedMs, item.info.enter, item.info.exit);
      if (!motion.isPresent())
        buses_[bus]->layers().remove(LayerKind::Text, item.key);
      else if (item.layer)
        buses_[bus]->layers().put(LayerKind::Text, item.key, item.layer, poseOn(bus, item));
      else
        buses_[bus]->layers().put(LayerKind::Text, item.key, {});
    }
  }
  const auto isGone = [](const Item& item) {
    return std::none_of(item.motions.begin(), item.motions.end(),
                        [](const ItemMotion& motion) { return motion.isPresent(); });
  };
  for (Item& item : items_) {
    if (!isGone(item))
      continue;
    raster_.withdraw(item.key);
    discarded.push_back({item.key, std::move(item.layer)});
  }
  items_.erase(std::remove_if(items_.begin(), items_.end(), isGone), items_.end());
}

}  // namespace korvia

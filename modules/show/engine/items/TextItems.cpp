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

QPoint centerOf(const tagKorviaShowTextInfo& info, FrameSize size) {
  return {static_cast<int>(std::lround(info.x * size.width)),
          static_cast<int>(std::lround(info.y * size.height))};
}

bool isNearPicture(const tagKorviaShowTextInfo& info) {
  // Also false for what is no number.
  return std::abs(info.x) < kFarthest && std::abs(info.y) < kFarthest;
}

/// The way from where a layer was drawn to where the record has its centre, in whole pixels, since layers are
/// drawn around whole pixels.
QPoint movedSince(const QRectF& content, const tagKorviaShowTextInfo& info, FrameSize size) {
  return isNearPicture(info) ? centerOf(info, size) - content.center().toPoint() : QPoint();
}

LayerRef layerOf(TextPainter& painter, const tagKorviaShowTextInfo& info, FrameSize size,
                 const QDateTime& now, const TextPart& part = {}, int revision = 0) {
  if (!isNearPicture(info))
    return {};
  const TextPicture picture = painter.paint(info, size, now, part);
  const QPoint center = centerOf(info, size);
  const QRectF content = picture.box.translated(center);
  const CrawlPart drawn{picture.part.begin, picture.part.begin + picture.part.width, revision};
  LayerRef layer = Layer::makeMovable(picture.image, center + picture.corner, size, content, drawn);
  // A crawl has to know how long its text is, also when the part is blank or beyond its end.
  if (!layer && part.width > 0 && !content.isEmpty())
    layer = Layer::makeBlank(size, content, drawn);
  return layer;
}

/// Tells the seconds of a clock apart; of no other meaning.
qint64 secondOf(const QDateTime& now) {
  return now.date().toJulianDay() * 86'400 + now.time().msecsSinceStartOfDay() / 1000;
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
    item.crawlKeys = {item.key + QStringLiteral(" pvm"), item.key + QStringLiteral(" pgm")};
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
  if (const LayerRef& layer = item->anyLayer(); layer && !size_.isEmpty()) {
    placement.width = layer->content.width() / size_.width;
    placement.height = layer->content.height() / size_.height;
  }
  return placement;
}

void TextItems::describe(std::vector<PlacedItem>& items) const {
  items.clear();
  for (std::size_t bus = 0; bus < kBuses; ++bus) {
    const auto begin = static_cast<std::ptrdiff_t>(items.size());
    for (const Item& item : items_) {
      const LayerRef& layer = item.layerOn(bus);
      if (!item.motions[bus].isPresent() || !layer || layer->content.isEmpty())
        continue;
      PlacedItem placed;
      placed.key = item.info.id;
      placed.bus = bus == 0 ? PVMObject : PGMObject;
      placed.content = layer->content.translated(movedSince(layer->content, item.info, size_));
      placed.x = item.info.x;
      placed.y = item.info.y;
      placed.isCrawl = CrawlLayers::isCrawl(item.info);
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

bool TextItems::Item::isDrawnOn(std::size_t bus) const {
  return isLayerDrawn || crawls[bus].isDrawn();
}

const LayerRef& TextItems::Item::layerOn(std::size_t bus) const {
  // A text that begins or stops to crawl shows its old layer until the new one is drawn.
  const CrawlLayers& crawl = crawls[bus];
  const bool usesCrawl = CrawlLayers::isCrawl(info) ? crawl.isDrawn() : !isLayerDrawn;
  return usesCrawl ? crawl.shown() : layer;
}

const LayerRef& TextItems::Item::anyLayer() const {
  const LayerRef& first = layerOn(0);
  return first ? first : layerOn(1);
}

bool TextItems::take(RasterWorker::Drawn& drawn) {
  for (Item& item : items_) {
    for (std::size_t bus = 0; bus < kBuses; ++bus) {
      if (item.crawlKeys[bus] != drawn.key)
        continue;
      item.crawls[bus].take(drawn.layer);
      return true;
    }
    if (item.key == drawn.key) {
      item.layer.swap(drawn.layer);
      item.isLayerDrawn = true;
      return true;
    }
  }
  return false;
}

void TextItems::draw(Item& item, const QDateTime& now) {
  if (!item.isChanged) {
    // The time is expanded once a second only, unless milliseconds are shown.
    if (!showsTime(item.info.text) ||
        (item.drawnSecond == secondOf(now) && !item.info.timeFormat.contains(QLatin1Char('z'))))
      return;
  }
  item.drawnSecond = secondOf(now);
  QString text = expandText(item.info.text, item.info.timeFormat, now);
  if (!std::exchange(item.isChanged, false) && text == item.drawnText)
    return;
  item.drawnText = std::move(text);
  ++item.revision;
  if (CrawlLayers::isCrawl(item.info))
    return;
  raster_.request(item.key, [painter = painter_, info = item.info, size = size_, now] {
    return layerOf(*painter, info, size, now);
  });
}

void TextItems::drawPart(Item& item, std::size_t bus, const TextPart& part, const QDateTime& now) {
  raster_.request(item.crawlKeys[bus],
                  [painter = painter_, info = item.info, size = size_, now, part, revision = item.revision] {
                    return layerOf(*painter, info, size, now, part, revision);
                  });
}

LayerPose TextItems::poseOn(std::size_t bus, const Item& item) const {
  const tagKorviaShowTextInfo& info = item.info;
  const ItemMotion& motion = item.motions[bus];
  const QRectF& content = item.layerOn(bus)->content;
  // An item that was moved goes there at once, and is drawn anew there afterwards.
  QPointF move = movedSince(content, info, size_);
  if (CrawlLayers::isCrawl(info))
    move.setX(CrawlLayers::moveOf(info, content, size_.width, motion.shownMs()));
  LayerPose pose = motion.pose(info.enter, info.exit, content.translated(move), size_);
  pose.anchorX -= move.x();
  pose.anchorY -= move.y();
  pose.moveX += move.x();
  pose.moveY += move.y();
  return pose;
}

void TextItems::show(Item& item, std::size_t bus, const QDateTime& now) {
  LayerStack& layers = buses_[bus]->layers();
  const ItemMotion& motion = item.motions[bus];
  if (!motion.isPresent()) {
    layers.remove(LayerKind::Text, item.key);
    return;
  }
  if (CrawlLayers::isCrawl(item.info)) {
    if (const auto part = item.crawls[bus].follow(item.info, size_, motion.shownMs(), item.revision))
      drawPart(item, bus, *part, now);
  }
  if (const LayerRef& layer = item.layerOn(bus))
    layers.put(LayerKind::Text, item.key, layer, poseOn(bus, item));
  else
    layers.put(LayerKind::Text, item.key, {});
}

void TextItems::discardUnused(Item& item, std::vector<RasterWorker::Drawn>& discarded) {
  const bool hasCrawl = std::any_of(item.crawls.begin(), item.crawls.end(),
                                    [](const CrawlLayers& crawl) { return crawl.isDrawn(); });
  if (!hasCrawl || !item.isLayerDrawn)
    return;
  if (CrawlLayers::isCrawl(item.info)) {
    discarded.push_back({item.key, std::move(item.layer)});
    item.layer.reset();
    item.isLayerDrawn = false;
  } else {
    for (CrawlLayers& crawl : item.crawls)
      crawl.clear(discarded);
  }
}

void TextItems::discard(Item& item, std::vector<RasterWorker::Drawn>& discarded) {
  raster_.withdraw(item.key);
  for (const QString& key : item.crawlKeys)
    raster_.withdraw(key);
  for (CrawlLayers& crawl : item.crawls)
    crawl.clear(discarded);
  discarded.push_back({item.key, std::move(item.layer)});
}

void TextItems::beginFrame(const QDateTime& now, double passedMs,
                           std::vector<RasterWorker::Drawn>& discarded) {
  for (Item& item : items_) {
    draw(item, now);
    for (std::size_t bus = 0; bus < kBuses; ++bus) {
      // An entrance begins when there is something to show.
      if (item.isDrawnOn(bus))
        item.motions[bus].advance(passedMs, item.info.enter, item.info.exit);
      show(item, bus, now);
    }
    discardUnused(item, discarded);
  }
  const auto isGone = [](const Item& item) {
    return std::none_of(item.motions.begin(), item.motions.end(),
                        [](const ItemMotion& motion) { return motion.isPresent(); });
  };
  for (Item& item : items_) {
    if (isGone(item))
      discard(item, discarded);
  }
  items_.erase(std::remove_if(items_.begin(), items_.end(), isGone), items_.end());
}

}  // namespace korvia

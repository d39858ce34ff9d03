#include "TextItems.h"

#include <algorithm>
#include <cmath>
#include <optional>
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
  return Layer::make(picture.image, center + picture.corner, size);
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
  Item& item = *find(info.id);
  if (!std::exchange(item.isShown[*place], true))
    buses_[*place]->layers().put(LayerKind::Text, item.key, item.layer);
}

void TextItems::remove(int bus, const QString& id) {
  const std::optional<std::size_t> place = placeOf(bus);
  Item* item = find(id);
  if (!place || !item || !std::exchange(item->isShown[*place], false))
    return;
  buses_[*place]->layers().remove(LayerKind::Text, item->key);
}

void TextItems::update(const tagKorviaShowTextInfo& info) {
  Item* item = find(info.id);
  if (!item || item->info == info)
    return;
  item->info = info;
  item->isChanged = true;
}

bool TextItems::take(RasterWorker::Drawn& drawn) {
  for (Item& item : items_) {
    if (item.key == drawn.key) {
      item.layer.swap(drawn.layer);
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

void TextItems::beginFrame(const QDateTime& now, std::vector<RasterWorker::Drawn>& discarded) {
  const auto firstHidden = std::stable_partition(items_.begin(), items_.end(), [](const Item& item) {
    return std::find(item.isShown.begin(), item.isShown.end(), true) != item.isShown.end();
  });
  for (auto hidden = firstHidden; hidden != items_.end(); ++hidden) {
    raster_.withdraw(hidden->key);
    discarded.push_back({hidden->key, std::move(hidden->layer)});
  }
  items_.erase(firstHidden, items_.end());
  for (Item& item : items_) {
    draw(item, now);
    for (std::size_t bus = 0; bus < kBuses; ++bus) {
      if (item.isShown[bus])
        buses_[bus]->layers().put(LayerKind::Text, item.key, item.layer);
    }
  }
}

}  // namespace korvia

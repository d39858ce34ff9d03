// The texts over the buses: keeps their records, has them drawn on the raster worker when they change, and
// puts their layers on the stacks of the buses. Engine thread.
#pragma once
#include <QDateTime>
#include <QString>
#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "engine/bus/Bus.h"
#include "engine/items/CrawlLayers.h"
#include "engine/items/ItemMotion.h"
#include "engine/items/PlacedItem.h"
#include "engine/items/RasterWorker.h"
#include "engine/items/text/TextPainter.h"
#include "tagKorviaShowPresentPlacement.h"
#include "tagKorviaShowTextInfo.h"

namespace korvia {

class TextItems {
 public:
  /// The buses and the worker outlive the object.
  TextItems(Bus& pvm, Bus& pgm, RasterWorker& raster);

  /// The size of the render picture, which texts are drawn for from now on.
  void open(FrameSize size);

  // Events. The bus is PVMObject or PGMObject; others are left alone.
  /// The text comes in by its entrance. One that is on its way out turns back.
  void add(int bus, const tagKorviaShowTextInfo& info);
  /// The text goes out by its exit, and is gone then.
  void remove(int bus, const QString& id);
  /// Changes the text wherever it shows. An unknown one is left alone.
  void update(const tagKorviaShowTextInfo& info);

  // Placing on the monitors.
  /// Moves the text wherever it shows. None for an unknown one, and for what is no number.
  std::optional<tagKorviaShowPresentPlacement> place(const QString& id, double x, double y);
  /// The texts that show on the buses, from below.
  void describe(std::vector<PlacedItem>& items) const;

  bool isEmpty() const { return items_.empty(); }
  /// Takes a layer that the worker has drawn; false when its key is of another item. Puts the former layer
  /// in its place, which the worker destroys.
  bool take(RasterWorker::Drawn& drawn);
  /// Begins a frame at this time of the day, so long after the last one: has changed texts drawn, and puts
  /// all layers on their buses. Layers that are not needed any more go to `discarded`.
  void beginFrame(const QDateTime& now, double passedMs, std::vector<RasterWorker::Drawn>& discarded);

 private:
  static constexpr std::size_t kBuses = 2;

  struct Item {
    tagKorviaShowTextInfo info;
    QString key;                            ///< of its layers, and of the requests of a text that stands
    std::array<QString, kBuses> crawlKeys;  ///< of the requests of a crawl
    std::array<ItemMotion, kBuses> motions;
    std::array<quint64, kBuses> turns{};     ///< count of the items that were shown on a bus before
    bool isChanged = true;                   ///< since it was drawn, except for the time
    qint64 drawnSecond = 0;                  ///< of the time in it
    QString drawnText;                       ///< with the time in it
    int revision = 0;                        ///< grows when a crawl has to be drawn anew
    bool isLayerDrawn = false;               ///< if only to find that there is nothing to be seen
    LayerRef layer;                          ///< null before it was drawn, and when nothing of it is visible
    std::array<CrawlLayers, kBuses> crawls;  ///< in place of the layer, while it crawls

    bool isDrawnOn(std::size_t bus) const;
    const LayerRef& layerOn(std::size_t bus) const;
    const LayerRef& anyLayer() const;
  };

  Item* find(const QString& id);
  void draw(Item& item, const QDateTime& now);
  void drawPart(Item& item, std::size_t bus, const TextPart& part, const QDateTime& now);
  void show(Item& item, std::size_t bus, const QDateTime& now);
  void discardUnused(Item& item, std::vector<RasterWorker::Drawn>& discarded);
  void discard(Item& item, std::vector<RasterWorker::Drawn>& discarded);
  LayerPose poseOn(std::size_t bus, const Item& item) const;

  const std::array<Bus*, kBuses> buses_;
  RasterWorker& raster_;
  const std::shared_ptr<TextPainter> painter_;  // the worker's thread
  FrameSize size_;
  quint64 turn_ = 0;
  std::vector<Item> items_;  // by the order in which they were added first
};

}  // namespace korvia

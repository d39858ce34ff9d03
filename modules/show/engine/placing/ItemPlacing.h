// Lets the operator place the items on the monitors of PVM and PGM: moves them where they were dragged,
// reports each place to the console, and holds the guides for the monitors. Engine thread.
#pragma once
#include <QHash>
#include <memory>
#include <vector>

#include "engine/items/TextItems.h"
#include "engine/placing/ItemBoard.h"
#include "tagKorviaShowPresentPlacement.h"
#include "tagKorviaWindowInfo.h"

namespace korvia {

class IShowBackendHost;

class ItemPlacing {
 public:
  /// The texts outlive the object.
  explicit ItemPlacing(TextItems& texts) : texts_(texts) {}
  ~ItemPlacing() { close(); }
  ItemPlacing(const ItemPlacing&) = delete;
  ItemPlacing& operator=(const ItemPlacing&) = delete;

  /// Null when there is nobody to report to.
  void setHost(IShowBackendHost* host) { host_ = host; }
  /// The size of the render picture, and the windows of the monitors.
  void open(FrameSize size, const tagKorviaShowWindowPackInfo& windows);
  void close();

  /// Moves the items that were dragged since the last frame. To be called before the items begin theirs.
  void beginFrame();
  /// Leaves to the monitors where the items of this frame lie.
  void endFrame();

  /// The console has taken a place over. It holds unless the item was moved again since.
  void commit(const tagKorviaShowPresentPlacement& placement);

  const MonitorGuides& pvmGuides() const { return pvmGuides_; }
  const MonitorGuides& pgmGuides() const { return pgmGuides_; }

 private:
  TextItems& texts_;
  IShowBackendHost* host_ = nullptr;
  std::shared_ptr<ItemBoard> board_;
  // Kept so that a frame does not allocate.
  std::vector<ItemMove> moves_;
  std::vector<PlacedItem> items_;
  QHash<QString, int> unansweredReports_;  ///< by the key of the item
  MonitorGuides pvmGuides_;
  MonitorGuides pgmGuides_;
};

}  // namespace korvia

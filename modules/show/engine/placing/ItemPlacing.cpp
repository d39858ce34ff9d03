#include "ItemPlacing.h"

#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "KorviaShowObjectID.h"
#include "backend/IShowBackend.h"
#include "engine/placing/MonitorMouse.h"

namespace korvia {

void ItemPlacing::open(FrameSize size, const tagKorviaShowWindowPackInfo& windows) {
  close();
  board_ = std::make_shared<ItemBoard>(size);
  MonitorMouse::watch(board_, PVMObject, windows.pvm.winId);
  MonitorMouse::watch(board_, PGMObject, windows.pgm.winId);
}

void ItemPlacing::close() {
  if (board_)
    board_->close();
  board_.reset();
  unansweredReports_.clear();
  pvmGuides_ = {};
  pgmGuides_ = {};
}

void ItemPlacing::beginFrame() {
  if (!board_)
    return;
  board_->take(moves_, pvmGuides_, pgmGuides_);
  for (const ItemMove& move : moves_) {
    const std::optional<tagKorviaShowPresentPlacement> placement = texts_.place(move.key, move.x, move.y);
    if (!placement || !host_)
      continue;
    ++unansweredReports_[move.key];
    host_->postResult(ShowEventPlacementChanged, toVariant(*placement));
  }
}

void ItemPlacing::endFrame() {
  if (!board_)
    return;
  texts_.describe(items_);
  board_->publish(items_);
}

void ItemPlacing::commit(const tagKorviaShowPresentPlacement& placement) {
  const auto unanswered = unansweredReports_.find(placement.key);
  if (unanswered != unansweredReports_.end()) {
    if (--*unanswered > 0)
      return;
    unansweredReports_.erase(unanswered);
  }
  if (placement.kind == PresentKindSubtitle)
    texts_.place(placement.key, placement.x, placement.y);
}

}  // namespace korvia

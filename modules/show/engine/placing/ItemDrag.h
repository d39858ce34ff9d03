// The operator's hand on the items of one monitor: drags one, attracted by centre lines and safe margins, and
// steps the one that was dragged last. Places are pixels of the render picture. Console thread.
#pragma once
#include <memory>

#include "engine/placing/ItemBoard.h"

namespace korvia {

class ItemDrag {
 public:
  struct Rules {
    /// Along the axis of the greater movement only.
    bool isStraight = false;
    /// Centre lines and margins attract from this far, on each axis.
    QPointF reach;
  };

  /// `bus` is PVMObject or PGMObject.
  ItemDrag(std::shared_ptr<ItemBoard> board, int bus) : board_(std::move(board)), bus_(bus) {}

  /// Takes the topmost item at this place; false when there is none.
  bool take(const QPointF& at);
  bool isHeld() const { return held_.has_value(); }
  void moveTo(const QPointF& at, const Rules& rules);
  /// Leaves the item where it is.
  void release();
  /// Puts the item back where it was taken.
  void cancel();
  /// Moves the item that was held last, if it is still shown; false when there is none.
  bool step(const QPointF& pixels);

 private:
  std::shared_ptr<ItemBoard> board_;
  const int bus_;
  std::optional<PlacedItem> held_;  ///< as it was taken
  QPointF takenAt_;
  QString last_;
};

}  // namespace korvia

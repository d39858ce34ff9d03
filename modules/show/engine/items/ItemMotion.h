// The presence of an item on a bus: it comes in, stays, goes out, and turns back on the way. Counts frames of
// the show. Engine thread.
#pragma once
#include <QRectF>

#include "engine/bus/LayerPose.h"
#include "engine/frame/Frame.h"
#include "tagKorviaShowPresentAnimation.h"

namespace korvia {

class ItemMotion {
 public:
  void show();
  void hide();
  /// Time has passed. An item that comes in and was not drawn yet waits for its picture.
  void advance(double ms, const tagKorviaShowPresentAnimation& enter,
               const tagKorviaShowPresentAnimation& exit);

  /// Whether it is on the bus, if only on its way out.
  bool isPresent() const { return present_; }
  /// Time since it was shown, without what it spent hidden.
  double shownMs() const { return shownMs_; }
  LayerPose pose(const tagKorviaShowPresentAnimation& enter, const tagKorviaShowPresentAnimation& exit,
                 const QRectF& item, FrameSize bus) const;

 private:
  enum class Way { In, Out };

  bool present_ = false;
  bool wanted_ = false;
  Way way_ = Way::In;   ///< of the animation that plays, forwards or backwards
  double visible_ = 0;  ///< linear: 0 hidden, 1 as it was drawn
  double shownMs_ = 0;
};

}  // namespace korvia

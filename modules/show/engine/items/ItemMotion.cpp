#include "ItemMotion.h"

#include "engine/items/ItemAnimation.h"
#include "engine/mix/Easing.h"

namespace korvia {

namespace {

constexpr double kRounding = 1e-9;

}  // namespace

void ItemMotion::show() {
  if (!present_) {
    way_ = Way::In;
    visible_ = 0;
    shownMs_ = 0;
  }
  present_ = wanted_ = true;
}

void ItemMotion::hide() {
  // What has not come in yet goes back on its way.
  if (wanted_ && visible_ >= 1)
    way_ = Way::Out;
  wanted_ = false;
  present_ = present_ && visible_ > 0;
}

void ItemMotion::advance(double ms, const tagKorviaShowPresentAnimation& enter,
                         const tagKorviaShowPresentAnimation& exit) {
  if (!present_)
    return;
  shownMs_ += ms;
  const auto durationMs = static_cast<double>(way_ == Way::In ? enter.duration : exit.duration);
  const int effect = way_ == Way::In ? enter.effect : exit.effect - kFirstExit;
  // What appears or disappears needs no time.
  const double step = durationMs > 0 && effect != 0 ? ms / durationMs : 1;
  visible_ += wanted_ ? step : -step;
  // Sums of steps miss the ends by a rounding.
  if (visible_ < kRounding)
    visible_ = 0;
  else if (visible_ > 1 - kRounding)
    visible_ = 1;
  present_ = wanted_ || visible_ > 0;
}

LayerPose ItemMotion::pose(const tagKorviaShowPresentAnimation& enter,
                           const tagKorviaShowPresentAnimation& exit, const QRectF& item,
                           FrameSize bus) const {
  if (way_ == Way::In)
    return entrancePose(enter.effect, easedProgress(enter.curve, visible_), item, bus);
  return exitPose(exit.effect, easedProgress(exit.curve, 1 - visible_), item, bus);
}

}  // namespace korvia

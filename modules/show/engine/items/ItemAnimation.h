// How an item comes and goes: its pose at each moment of an entrance or an exit. Pure functions, any thread.
#pragma once
#include <QRectF>

#include "engine/bus/LayerPose.h"
#include "engine/frame/Frame.h"

namespace korvia {

/// Exits have the number of their entrance and this.
inline constexpr int kFirstExit = 26;

/// The pose of an item with this rectangle, in pixels of the bus's picture, at `shown` of its entrance: 0 is
/// before the first picture, 1 exactly as it was drawn. An effect that is no entrance of texts appears at
/// once.
LayerPose entrancePose(int effect, double shown, const QRectF& item, FrameSize bus);

/// The same of an exit at `gone`: 0 is exactly as it was drawn.
LayerPose exitPose(int effect, double gone, const QRectF& item, FrameSize bus);

}  // namespace korvia

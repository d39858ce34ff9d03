// What a monitor shows over its picture while the operator drags an item: the item's frame, the centre lines
// and the safe margins. Never part of the picture itself. A plain value, any thread.
#pragma once
#include <QRectF>
#include <cstdint>
#include <optional>

#include "engine/frame/Frame.h"

namespace korvia {

/// The part of the picture at each border that old screens hide.
inline constexpr double kSafeMargin = 0.05;

struct MonitorGuides {
  bool isShown = false;
  /// In fractions of the picture, like the lines.
  QRectF item;
  /// The upright and the level line that the item is attracted by.
  std::optional<double> uprightLine;
  std::optional<double> levelLine;

  friend bool operator==(const MonitorGuides&, const MonitorGuides&) = default;
};

/// Draws them over a picture of 32-bit BGRX rows.
void drawGuides(const MonitorGuides& guides, FrameSize size, std::uint8_t* pixels, int stride);

}  // namespace korvia

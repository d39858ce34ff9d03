// A coverage and where it lies. A plain value, any thread.
#pragma once
#include <QRect>

#include "engine/items/text/GlyphEffects.h"

namespace korvia {

struct PlacedCoverage {
  Coverage coverage;
  /// Pixels of the render picture from the centre of the item.
  QRect rect;
};

}  // namespace korvia

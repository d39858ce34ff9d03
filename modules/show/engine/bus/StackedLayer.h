// A layer over a bus, and how it is shown there. A plain value, engine thread.
#pragma once
#include <utility>

#include "engine/bus/Layer.h"
#include "engine/bus/LayerPose.h"

namespace korvia {

struct StackedLayer {
  StackedLayer(LayerRef shown, const LayerPose& how = {}) : layer(std::move(shown)), pose(how) {}

  LayerRef layer;  ///< null for a place that shows nothing
  LayerPose pose;
};

}  // namespace korvia

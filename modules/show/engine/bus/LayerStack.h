// The layers over one bus in their stacking order. Engine thread.
#pragma once
#include <QString>
#include <vector>

#include "engine/bus/StackedLayer.h"

namespace korvia {

/// What a layer shows, in stacking order from below.
enum class LayerKind { Overlay, Logo, Text, Component, Lyrics, ScreenCut, PaintPad };

class LayerStack {
 public:
  /// Puts a layer on top of its kind, or replaces the one of the same kind and key. A null layer keeps the
  /// place and shows nothing. Returns the layer that was replaced.
  LayerRef put(LayerKind kind, const QString& key, LayerRef layer, const LayerPose& pose = {});
  /// Removes the layer and its place, and returns it.
  LayerRef remove(LayerKind kind, const QString& key);
  /// From below; some have no layer.
  const std::vector<StackedLayer>& layers() const { return layers_; }

 private:
  struct Place {
    LayerKind kind;
    QString key;
  };
  std::size_t find(LayerKind kind, const QString& key) const;

  // Two parallel arrays, so that the compositor gets the layers without their keys.
  std::vector<Place> places_;
  std::vector<StackedLayer> layers_;
};

}  // namespace korvia

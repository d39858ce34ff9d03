// The layers over one bus, in the order in which they lie over each other. Engine thread.
#pragma once
#include <QString>
#include <vector>

#include "engine/bus/Layer.h"

namespace korvia {

/// What a layer shows; later kinds lie over earlier ones.
enum class LayerKind { Overlay, Logo, Text, Component, Lyrics, ScreenCut, PaintPad };

class LayerStack {
 public:
  /// Shows a layer on top of its kind, or in the place of the one that the same kind and key had. A null
  /// layer keeps the place and shows nothing there. Gives back what lay there before.
  LayerRef put(LayerKind kind, const QString& key, LayerRef layer);
  /// Takes the layer away and gives it back; its place in the order is lost.
  LayerRef remove(LayerKind kind, const QString& key);
  /// From below; some may be null.
  const std::vector<LayerRef>& layers() const { return layers_; }

 private:
  struct Place {
    LayerKind kind;
    QString key;
  };
  std::size_t find(LayerKind kind, const QString& key) const;

  // Two arrays of the same order, so that the compositor gets the layers alone.
  std::vector<Place> places_;
  std::vector<LayerRef> layers_;
};

}  // namespace korvia

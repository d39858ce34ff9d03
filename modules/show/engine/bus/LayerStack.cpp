#include "LayerStack.h"

#include <algorithm>
#include <utility>

namespace korvia {

std::size_t LayerStack::find(LayerKind kind, const QString& key) const {
  const auto found = std::find_if(places_.begin(), places_.end(),
                                  [&](const Place& place) { return place.kind == kind && place.key == key; });
  return static_cast<std::size_t>(found - places_.begin());
}

LayerRef LayerStack::put(LayerKind kind, const QString& key, LayerRef layer, const LayerPose& pose) {
  const std::size_t at = find(kind, key);
  if (at < places_.size())
    return std::exchange(layers_[at], StackedLayer(std::move(layer), pose)).layer;
  const auto above =
      std::find_if(places_.begin(), places_.end(), [kind](const Place& place) { return place.kind > kind; });
  layers_.insert(layers_.begin() + (above - places_.begin()), StackedLayer(std::move(layer), pose));
  places_.insert(above, {kind, key});
  return {};
}

LayerRef LayerStack::remove(LayerKind kind, const QString& key) {
  const std::size_t at = find(kind, key);
  if (at == places_.size())
    return {};
  const auto offset = static_cast<std::ptrdiff_t>(at);
  LayerRef removed = std::move(layers_[at].layer);
  layers_.erase(layers_.begin() + offset);
  places_.erase(places_.begin() + offset);
  return removed;
}

}  // namespace korvia

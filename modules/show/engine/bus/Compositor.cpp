#include "Compositor.h"

#include <algorithm>
#include <cstring>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/RowKernels.h"

namespace korvia {

namespace {

bool covers(const StackedLayer& stacked, const FrameRef& base) {
  return stacked.layer && stacked.layer->busSize == base->size() && stacked.pose.opacity > 0;
}

/// The layer where it was drawn. It may reach beyond the picture.
void blend(const Layer& layer, Frame& onto) {
  for (const int plane : kOpaquePlanes) {
    const PlaneView top = planeOf(*layer.picture, plane);
    const WritablePlane under = writablePlaneOf(onto, plane);
    const int step = stepOf(plane);
    const int left = layer.rect.x / step;
    const int first = layer.rect.y / step;
    const int skip = std::max(0, -left);
    const int count = std::min(top.width, under.width - left) - skip;
    if (count <= 0)
      continue;
    const int end = std::min(top.height, under.height - first);
    for (int y = std::max(0, -first); y < end; ++y)
      blendPremultipliedRow(top.row(y) + skip, layer.alphaRow(plane, y) + skip, blackOf(plane),
                            under.row(first + y) + left + skip, count);
  }
}

}  // namespace

// Rows that a layer touches are blended next and stay in the cache. The others are not read again before the
// monitors and outputs do, so that they bypass it.
void Compositor::copy(const Frame& from, Frame& to) const {
  for (const int plane : kOpaquePlanes) {
    const PlaneView source = planeOf(from, plane);
    const WritablePlane target = writablePlaneOf(to, plane);
    for (int y = 0; y < source.height; ++y) {
      const int line = y * stepOf(plane);
      const bool isTouched = std::any_of(rows_.begin(), rows_.end(), [line](const RowRange& rows) {
        return rows.begin <= line && line < rows.end;
      });
      if (isTouched)
        std::memcpy(target.row(y), source.row(y), static_cast<std::size_t>(source.width));
      else
        copyRowNonTemporal(source.row(y), target.row(y), source.width);
    }
  }
}

FrameRef Compositor::over(const FrameRef& base, const std::vector<StackedLayer>& layers, FramePool& pool) {
  looks_.clear();
  for (const StackedLayer& stacked : layers) {
    if (covers(stacked, base))
      looks_.push_back({stacked.layer->version, stacked.pose});
  }
  if (isLastResult(base))
    return result_;
  result_.reset();
  base_.reset();
  if (looks_.empty())
    return base;
  rows_.clear();
  for (const StackedLayer& stacked : layers) {
    if (covers(stacked, base))
      rows_.push_back(PosedBlend::rows(*stacked.layer, stacked.pose, base->size()));
  }
  MutableFrame blended = pool.acquire();
  copy(*base, *blended);
  for (const StackedLayer& stacked : layers) {
    if (!covers(stacked, base))
      continue;
    if (stacked.pose.isPlain())
      blend(*stacked.layer, *blended);
    else
      posed_.blend(*stacked.layer, stacked.pose, *blended);
  }
  base_ = base;
  lastLooks_ = looks_;
  result_ = std::move(blended).publish();
  return result_;
}

}  // namespace korvia

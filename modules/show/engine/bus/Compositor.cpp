#include "Compositor.h"

#include <libyuv/planar_functions.h>

#include <algorithm>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/RowKernels.h"

namespace korvia {

namespace {

bool covers(const StackedLayer& stacked, const FrameRef& base) {
  return stacked.layer && stacked.layer->busSize == base->size() && stacked.pose.opacity > 0;
}

void copy(const Frame& from, Frame& to) {
  for (const int plane : kOpaquePlanes)
    libyuv::CopyPlane(from.plane(plane), from.stride(plane), to.writablePlane(plane), to.stride(plane),
                      from.planeWidth(plane), from.planeHeight(plane));
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

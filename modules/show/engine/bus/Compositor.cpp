#include "Compositor.h"

#include <libyuv/planar_functions.h>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/RowKernels.h"

namespace korvia {

namespace {

bool covers(const LayerRef& layer, const FrameRef& base) {
  return layer && layer->busSize == base->size();
}

void copy(const Frame& from, Frame& to) {
  for (const int plane : kOpaquePlanes)
    libyuv::CopyPlane(from.plane(plane), from.stride(plane), to.writablePlane(plane), to.stride(plane),
                      from.planeWidth(plane), from.planeHeight(plane));
}

void blend(const Layer& layer, Frame& onto) {
  for (const int plane : kOpaquePlanes) {
    const PlaneView top = planeOf(*layer.picture, plane);
    const WritablePlane under = writablePlaneOf(onto, plane);
    const int step = stepOf(plane);
    const int left = layer.rect.x / step;
    const int first = layer.rect.y / step;
    for (int y = 0; y < top.height; ++y)
      blendPremultipliedRow(top.row(y), layer.alphaRow(plane, y), blackOf(plane), under.row(first + y) + left,
                            top.width);
  }
}

}  // namespace

FrameRef Compositor::over(const FrameRef& base, const std::vector<LayerRef>& layers, FramePool& pool) {
  versions_.clear();
  for (const LayerRef& layer : layers) {
    if (covers(layer, base))
      versions_.push_back(layer->version);
  }
  if (isLastResult(base))
    return result_;
  result_.reset();
  base_.reset();
  if (versions_.empty())
    return base;
  MutableFrame blended = pool.acquire();
  copy(*base, *blended);
  for (const LayerRef& layer : layers) {
    if (covers(layer, base))
      blend(*layer, *blended);
  }
  base_ = base;
  lastVersions_ = versions_;
  result_ = std::move(blended).publish();
  return result_;
}

}  // namespace korvia

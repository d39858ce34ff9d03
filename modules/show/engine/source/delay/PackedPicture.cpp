#include "PackedPicture.h"

#include <libyuv/planar_functions.h>
#include <libyuv/scale.h>

#include "engine/frame/PlaneView.h"

namespace korvia {

namespace {

FrameSize scaledSize(FrameSize size, DelayPlan::PictureScale scale) {
  if (scale == DelayPlan::PictureScale::Full)
    return size;
  return {(size.width + 1) / 2, (size.height + 1) / 2};
}

FrameSize planeSize(FrameSize size, int plane) {
  return plane == Frame::Y ? size : FrameSize{size.chromaWidth(), size.chromaHeight()};
}

/// Scales or copies; libyuv does both.
void transfer(const PlaneView& from, const WritablePlane& to) {
  if (from.width == to.width && from.height == to.height)
    libyuv::CopyPlane(from.data, from.stride, to.data, to.stride, to.width, to.height);
  else
    libyuv::ScalePlane(from.data, from.stride, from.width, from.height, to.data, to.stride, to.width,
                       to.height, libyuv::kFilterBox);
}

}  // namespace

std::int64_t packedBytes(FrameSize size, DelayPlan::PictureScale scale) {
  const FrameSize scaled = scaledSize(size, scale);
  return std::int64_t{scaled.width} * scaled.height +
         2 * std::int64_t{scaled.chromaWidth()} * scaled.chromaHeight();
}

void packPicture(const Frame& picture, DelayPlan::PictureScale scale, std::uint8_t* bytes) {
  const FrameSize scaled = scaledSize(picture.size(), scale);
  for (const int plane : kOpaquePlanes) {
    const FrameSize size = planeSize(scaled, plane);
    transfer(planeOf(picture, plane), {bytes, size.width, size.width, size.height});
    bytes += std::int64_t{size.width} * size.height;
  }
}

void unpackPicture(const std::uint8_t* bytes, DelayPlan::PictureScale scale, Frame& frame) {
  const FrameSize scaled = scaledSize(frame.size(), scale);
  for (const int plane : kOpaquePlanes) {
    const FrameSize size = planeSize(scaled, plane);
    transfer({bytes, size.width, size.width, size.height}, writablePlaneOf(frame, plane));
    bytes += std::int64_t{size.width} * size.height;
  }
}

}  // namespace korvia

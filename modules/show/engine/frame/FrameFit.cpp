#include "FrameFit.h"

#include <libyuv/planar_functions.h>
#include <libyuv/scale.h>

#include <algorithm>

#include "PlaneView.h"

namespace korvia {

namespace {

int nearestEven(std::int64_t numerator, std::int64_t denominator, int most) {
  const std::int64_t even = (numerator + denominator) / (2 * denominator) * 2;
  return static_cast<int>(std::clamp<std::int64_t>(even, 2, std::max(2, most & ~1)));
}

struct PlaneRect {
  int x, y, width, height;
};

PlaneRect planeRect(const FrameRect& rect, const Frame& target, int plane) {
  const bool chroma = plane == Frame::U || plane == Frame::V;
  const int shift = chroma ? 1 : 0;
  const int x = rect.x >> shift;
  const int y = rect.y >> shift;
  // Rounded up, so that a rectangle of odd size keeps its edge. Only a picture of the size of the target has
  // one.
  return {x, y, std::min((rect.width + shift) >> shift, target.planeWidth(plane) - x),
          std::min((rect.height + shift) >> shift, target.planeHeight(plane) - y)};
}

void fillAround(Frame& target, int plane, const PlaneRect& inner, std::uint8_t value) {
  const int width = target.planeWidth(plane);
  const int height = target.planeHeight(plane);
  const int stride = target.stride(plane);
  std::uint8_t* data = target.writablePlane(plane);
  const auto fill = [&](int x, int y, int w, int h) {
    if (w > 0 && h > 0)
      libyuv::SetPlane(data + static_cast<std::ptrdiff_t>(y) * stride + x, stride, w, h, value);
  };
  const int right = inner.x + inner.width;
  const int bottom = inner.y + inner.height;
  fill(0, 0, width, inner.y);
  fill(0, bottom, width, height - bottom);
  fill(0, inner.y, inner.x, inner.height);
  fill(right, inner.y, width - right, inner.height);
}

}  // namespace

FrameRect fitRect(FrameSize picture, int pixelAspectNumerator, int pixelAspectDenominator, FrameSize target) {
  if (picture.isEmpty() || pixelAspectNumerator <= 0 || pixelAspectDenominator <= 0)
    return {0, 0, target.width, target.height};
  const std::int64_t shownWidth = static_cast<std::int64_t>(picture.width) * pixelAspectNumerator;
  const std::int64_t shownHeight = static_cast<std::int64_t>(picture.height) * pixelAspectDenominator;
  if (shownWidth * target.height == shownHeight * target.width)
    return {0, 0, target.width, target.height};
  FrameRect rect{0, 0, target.width, target.height};
  if (shownWidth * target.height > shownHeight * target.width)
    rect.height = nearestEven(target.width * shownHeight, shownWidth, target.height);
  else
    rect.width = nearestEven(target.height * shownWidth, shownHeight, target.width);
  rect.x = std::max(0, (target.width - rect.width) / 4 * 2);
  rect.y = std::max(0, (target.height - rect.height) / 4 * 2);
  return rect;
}

void fitFrame(const Frame& picture, const FrameRect& rect, Frame& target) {
  const int planes = target.hasAlpha() ? 4 : 3;
  for (int plane = 0; plane < planes; ++plane) {
    const PlaneRect inner = planeRect(rect, target, plane);
    fillAround(target, plane, inner, static_cast<std::uint8_t>(blackOf(plane)));
    if (inner.width <= 0 || inner.height <= 0)
      continue;
    std::uint8_t* to =
        target.writablePlane(plane) + static_cast<std::ptrdiff_t>(inner.y) * target.stride(plane) + inner.x;
    if (plane == Frame::A && !picture.hasAlpha()) {
      libyuv::SetPlane(to, target.stride(plane), inner.width, inner.height, 255);
      continue;
    }
    const bool shrinks = picture.planeWidth(plane) > inner.width || picture.planeHeight(plane) > inner.height;
    libyuv::ScalePlane(picture.plane(plane), picture.stride(plane), picture.planeWidth(plane),
                       picture.planeHeight(plane), to, target.stride(plane), inner.width, inner.height,
                       shrinks ? libyuv::kFilterBox : libyuv::kFilterBilinear);
  }
}

}  // namespace korvia

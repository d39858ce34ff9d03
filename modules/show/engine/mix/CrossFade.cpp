#include "CrossFade.h"

#include <libyuv.h>

#include <algorithm>
#include <cmath>

namespace korvia {

void CrossFade::mix(const Frame& from, const Frame& to, double position, Frame& out) const {
  // 256 steps of 1/256: libyuv gives (from * (256 - w) + to * w + 128) / 256 for each sample.
  const int weight = std::clamp(static_cast<int>(std::lround(position * 256)), 0, 255);
  const int planes = out.hasAlpha() && from.hasAlpha() && to.hasAlpha() ? 4 : 3;
  for (int plane = 0; plane < planes; ++plane)
    libyuv::InterpolatePlane(from.plane(plane), from.stride(plane), to.plane(plane), to.stride(plane),
                             out.writablePlane(plane), out.stride(plane), out.planeWidth(plane),
                             out.planeHeight(plane), weight);
}

}  // namespace korvia

#include "CrossFade.h"

#include <algorithm>
#include <cmath>

#include "engine/kernels/RowKernels.h"

namespace korvia {

void CrossFade::mix(const Frame& from, const Frame& to, double position, Frame& out) const {
  const int weight = std::clamp(static_cast<int>(std::lround(position * 256)), 0, 256);
  const int planes = out.hasAlpha() && from.hasAlpha() && to.hasAlpha() ? 4 : 3;
  for (int plane = 0; plane < planes; ++plane) {
    const std::uint8_t* a = from.plane(plane);
    const std::uint8_t* b = to.plane(plane);
    std::uint8_t* mixed = out.writablePlane(plane);
    for (int row = 0; row < out.planeHeight(plane); ++row) {
      mixRow(a, b, weight, mixed, out.planeWidth(plane));
      a += from.stride(plane);
      b += to.stride(plane);
      mixed += out.stride(plane);
    }
  }
}

}  // namespace korvia

#include "CrossFade.h"

#include <algorithm>
#include <cmath>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/RowKernels.h"

namespace korvia {

void crossFade(const Frame& from, const Frame& to, int weight, Frame& out) {
  for (const int plane : kOpaquePlanes) {
    const PlaneView a = planeOf(from, plane);
    const PlaneView b = planeOf(to, plane);
    const WritablePlane mixed = writablePlaneOf(out, plane);
    for (int y = 0; y < mixed.height; ++y)
      mixRow(a.row(y), b.row(y), weight, mixed.row(y), mixed.width);
  }
}

void CrossFade::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& /*scratch*/,
                    Frame& out) const {
  crossFade(from, to, std::clamp(static_cast<int>(std::lround(point.position * 256)), 0, 256), out);
}

}  // namespace korvia

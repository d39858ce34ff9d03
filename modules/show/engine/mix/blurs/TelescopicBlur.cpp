#include "Blurs.h"

#include <algorithm>
#include <cmath>

#include "engine/kernels/RowKernels.h"
#include "engine/mix/Curves.h"
#include "engine/mix/blurs/PoissonDisk.h"
#include "engine/mix/blurs/SmallPicture.h"
#include "engine/mix/blurs/Smear.h"

namespace korvia {

void TelescopicBlur::mix(const Frame& from, const Frame& to, const MixPoint& point,
                         TransitionScratch& scratch, Frame& out) const {
  const FrameSize size = from.size();
  const double depth = smoothStep(triangleAt(point.position));
  const int weight = hiddenFadeWeight(point.position);
  const double rim = 0.02 * size.height;
  const double open = std::hypot(size.width, size.height) / 2 + kShrink;
  const double eyepiece = open + (0.3 * size.height - open) * depth;
  Frame& small = smallFade(from, to, weight, scratch);
  Frame& larger = scratch.frame(kSpareFrame, small.size());
  moveSmall(small, size, {0, 0.15}, larger);
  blurByDisk(larger, 0.025 * size.height / kShrink, scratch, small);

  const Frame& light = roundMask(size, scratch, [&](double distance) {
    return 0.35 + 0.4 * smoothStep((distance - eyepiece) / (0.25 * size.height));
  });
  auto* black = scratch.buffer<std::uint8_t>(kRowBuffer, static_cast<std::size_t>(small.width()));
  for (const int plane : kOpaquePlanes) {
    const PlaneView blurred = planeOf(small, plane);
    const WritablePlane darkened = writablePlaneOf(larger, plane);
    const PlaneView strengths = planeOf(light, maskPlaneOf(plane));
    std::fill_n(black, darkened.width, static_cast<std::uint8_t>(blackOf(plane)));
    for (int y = 0; y < darkened.height; ++y)
      mixMaskedRow(black, blurred.row(y), strengths.row(y), darkened.row(y), darkened.width);
  }
  const Frame& eyepieceMask =
      roundMask(size, scratch, [&](double distance) { return smoothStep((distance - eyepiece) / rim); });
  drawSoftened(from, to, weight, larger, eyepieceMask, scratch, out);
}

}  // namespace korvia

#include "Blurs.h"

#include <algorithm>
#include <cmath>

#include "engine/kernels/BlurKernels.h"
#include "engine/mix/Curves.h"
#include "engine/mix/blurs/SmallPicture.h"
#include "engine/mix/blurs/Smear.h"
#include "engine/mix/fades/CrossFade.h"

namespace korvia {

namespace {

/// How far both pictures are zoomed and smeared at a position, and the weight of the second.
struct ZoomStep {
  int weight = 0;
  Movement zoomFrom;
  Movement zoomTo;
  double smear = 0;
};

/// The fade of the two zoomed pictures, small and smeared.
const Frame& smallZoom(const Frame& from, const Frame& to, const ZoomStep& step, TransitionScratch& scratch) {
  const FrameSize size = from.size();
  Frame& small = scratch.frame(kSmallFrame, smallSizeOf(size));
  Frame& first = scratch.frame(kSpareFrame, small.size());
  Frame& second = scratch.frame(kOtherFrame, small.size());
  if (step.weight < 256) {
    shrinkFade(from, from, 0, small);
    moveSmall(small, size, step.zoomFrom, first);
  }
  if (step.weight > 0) {
    shrinkFade(to, to, 256, small);
    moveSmall(small, size, step.zoomTo, second);
  }
  crossFade(step.weight < 256 ? first : second, step.weight > 0 ? second : first, step.weight, small);
  smearSmall(small, size, {0, step.smear}, scratch);
  return small;
}

/// Draws the small picture in full size, and over it the two sharp zoomed pictures where the mask is below
/// 255.
void drawZoomed(const Frame& from, const Frame& to, const ZoomStep& step, const Frame& small,
                const Frame& mask, TransitionScratch& scratch, Frame& out) {
  const auto width = static_cast<std::size_t>(out.width());
  auto* soft = scratch.buffer<std::uint8_t>(0, width);
  auto* strength = scratch.buffer<std::uint8_t>(1, width);
  auto* first = scratch.buffer<std::uint8_t>(kRowBuffer, width);
  auto* second = scratch.buffer<std::uint8_t>(kOtherRowBuffer, width);
  for (const int plane : kOpaquePlanes) {
    const PlanePoint centre = centreOf(out.size(), stepOf(plane));
    const MovedPlane movedFrom(planeOf(from, plane), centre, step.zoomFrom);
    const MovedPlane movedTo(planeOf(to, plane), centre, step.zoomTo);
    const WritablePlane target = writablePlaneOf(out, plane);
    for (int y = 0; y < target.height; ++y) {
      enlargedRow(planeOf(small, plane), y, target.row(y), target.width);
      // Only the columns around the centre show something sharp.
      const PlaneView strengths = planeOf(mask, maskPlaneOf(plane));
      const ColumnSpan span = spanBelowFull(strengths, y, target.width);
      const int begin = span.begin;
      const int count = span.end - begin;
      if (count == 0)
        continue;
      enlargedRow(strengths, y, strength, target.width);
      std::copy_n(target.row(y) + begin, count, soft);
      if (step.weight < 256)
        movedFrom.row(y, begin, count, first);
      if (step.weight > 0)
        movedTo.row(y, begin, count, second);
      softenRow(step.weight < 256 ? first : second, step.weight > 0 ? second : first, step.weight, soft,
                strength + begin, target.row(y) + begin, count);
    }
  }
}

}  // namespace

void ZoomBlur::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                   Frame& out) const {
  constexpr double kLargestSmear = 0.4;
  const double position = std::clamp(point.position, 0.0, 1.0);
  const ZoomStep step{hiddenFadeWeight(position),
                      {0, 1.6 * std::pow(position, 1.5)},
                      {0, -0.9 * (1 - position) * (1 - position)},
                      kLargestSmear * smoothStep(triangleAt(position))};
  const Frame& small = smallZoom(from, to, step, scratch);
  const Frame& mask = roundMask(from.size(), scratch, [&](double distance) {
    return smoothStep(distance * step.smear / kHidingSmear);
  });
  drawZoomed(from, to, step, small, mask, scratch, out);
}

}  // namespace korvia

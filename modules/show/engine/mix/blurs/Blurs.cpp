#include "Blurs.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/BlurKernels.h"
#include "engine/kernels/RowKernels.h"
#include "engine/mix/SmoothStep.h"
#include "engine/mix/blurs/MixCourse.h"
#include "engine/mix/blurs/PoissonDisk.h"
#include "engine/mix/blurs/SmallPicture.h"
#include "engine/mix/blurs/Smear.h"
#include "engine/mix/fades/CrossFade.h"

namespace korvia {

namespace {

// Places in the scratch; the helpers of small pictures use frame 1 and the buffers below 3.
constexpr int kSmallPlace = 0;
constexpr int kSparePlace = 1;
constexpr int kMaskPlace = 2;
constexpr int kOtherPlace = 3;
constexpr int kRowBuffer = 3;
constexpr int kSumBuffer = 4;

/// A smear of so many luma samples hides that it is made from a small picture.
constexpr double kHidingSmear = 10;

Frame& smallFade(const Frame& from, const Frame& to, int weight, TransitionScratch& scratch) {
  Frame& small = scratch.frame(kSmallPlace, smallSizeOf(from.size()));
  shrinkFade(from, to, weight, small);
  return small;
}

/// A mask for a small picture whose strength, 0 to 1, depends on the distance from the middle of the full one
/// in luma samples.
template <typename Strength>
void fillRound(FrameSize size, TransitionScratch& scratch, Frame& mask, Strength strength) {
  const auto reach = static_cast<std::size_t>(std::hypot(size.width, size.height) / 2) + 2 * kShrink + 1;
  auto* strengths = scratch.buffer<std::uint8_t>(0, reach);
  for (std::size_t i = 0; i < reach; ++i)
    strengths[i] = static_cast<std::uint8_t>(std::lround(255 * strength(static_cast<double>(i))));
  for (const int plane : {Frame::Y, Frame::U}) {
    const int step = kShrink * stepOf(plane);
    const PlanePoint centre = centreOf(size, step);
    const WritablePlane target = writablePlaneOf(mask, plane);
    for (int y = 0; y < target.height; ++y) {
      const auto down = static_cast<float>((y - centre.y) * step);
      std::uint8_t* row = target.row(y);
      for (int x = 0; x < target.width; ++x) {
        const auto across = static_cast<float>((x - centre.x) * step);
        const auto distance = static_cast<std::size_t>(std::sqrt(across * across + down * down));
        row[x] = strengths[std::min(distance, reach - 1)];
      }
    }
  }
}

Frame& maskFor(const Frame& small, TransitionScratch& scratch) {
  return scratch.frame(kMaskPlace, small.size());
}

/// A fade smeared along a movement that passes a point at its distance from the middle times `pace`.
void mixSmeared(const Frame& from, const Frame& to, int weight, Movement movement, double pace,
                TransitionScratch& scratch, Frame& out) {
  Frame& small = smallFade(from, to, weight, scratch);
  smearSmall(small, from.size(), movement, scratch);
  Frame& mask = maskFor(small, scratch);
  fillRound(from.size(), scratch, mask,
            [&](double distance) { return smoothStep(distance * pace / kHidingSmear); });
  drawSoftened(from, to, weight, small, mask, scratch, out);
}

/// How both pictures stand in a zoom.
struct ZoomStep {
  int weight = 0;
  Movement nearing;
  Movement settling;
  double smear = 0;
};

/// The fade of the two moved pictures, small and smeared.
const Frame& smallZoom(const Frame& from, const Frame& to, const ZoomStep& step, TransitionScratch& scratch) {
  const FrameSize size = from.size();
  Frame& small = scratch.frame(kSmallPlace, smallSizeOf(size));
  Frame& first = scratch.frame(kSparePlace, small.size());
  Frame& second = scratch.frame(kOtherPlace, small.size());
  if (step.weight < 256) {
    shrinkFade(from, from, 0, small);
    moveSmall(small, size, step.nearing, first);
  }
  if (step.weight > 0) {
    shrinkFade(to, to, 256, small);
    moveSmall(small, size, step.settling, second);
  }
  crossFade(step.weight < 256 ? first : second, step.weight > 0 ? second : first, step.weight, small);
  smearSmall(small, size, {0, step.smear}, scratch);
  return small;
}

/// The small zoom in full size, and what the mask leaves of the two moved pictures.
void drawZoomed(const Frame& from, const Frame& to, const ZoomStep& step, const Frame& small,
                const Frame& mask, TransitionScratch& scratch, Frame& out) {
  const auto width = static_cast<std::size_t>(out.width());
  auto* soft = scratch.buffer<std::uint8_t>(0, width);
  auto* strength = scratch.buffer<std::uint8_t>(1, width);
  auto* first = scratch.buffer<std::uint8_t>(kRowBuffer, width);
  auto* second = scratch.buffer<std::uint8_t>(kSumBuffer, width);
  for (const int plane : kOpaquePlanes) {
    const PlanePoint centre = centreOf(out.size(), stepOf(plane));
    const MovedPlane nearing(planeOf(from, plane), centre, step.nearing);
    const MovedPlane settling(planeOf(to, plane), centre, step.settling);
    const WritablePlane target = writablePlaneOf(out, plane);
    for (int y = 0; y < target.height; ++y) {
      enlargedRow(planeOf(small, plane), y, target.row(y), target.width);
      // Only round the middle there is something sharp to show.
      const PlaneView strengths = planeOf(mask, maskPlaneOf(plane));
      const ColumnSpan span = spanBelowFull(strengths, y, target.width);
      const int begin = span.begin;
      const int count = span.end - begin;
      if (count == 0)
        continue;
      enlargedRow(strengths, y, strength, target.width);
      std::copy_n(target.row(y) + begin, count, soft);
      if (step.weight < 256)
        nearing.row(y, begin, count, first);
      if (step.weight > 0)
        settling.row(y, begin, count, second);
      softenRow(step.weight < 256 ? first : second, step.weight > 0 ? second : first, step.weight, soft,
                strength + begin, target.row(y) + begin, count);
    }
  }
}

}  // namespace

void CircularBlur::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                       Frame& out) const {
  constexpr double kLargestTurn = 0.4;
  const double turn = kLargestTurn * smoothStep(depthAt(point.position));
  mixSmeared(from, to, hiddenFadeWeight(point.position), {turn, 0}, turn, scratch, out);
}

void RadialBlur::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                     Frame& out) const {
  constexpr double kLargestGrowth = 0.35;
  const double growth = kLargestGrowth * smoothStep(depthAt(point.position));
  mixSmeared(from, to, hiddenFadeWeight(point.position), {0, growth}, growth, scratch, out);
}

void DirectionalBlur::mix(const Frame& from, const Frame& to, const MixPoint& point,
                          TransitionScratch& scratch, Frame& out) const {
  // Of the picture's width, to each side.
  constexpr double kLargestRadius = 0.06;
  const double radius = kLargestRadius * from.width() * smoothStep(depthAt(point.position));
  const int weight = hiddenFadeWeight(point.position);
  const auto borderMost = static_cast<std::size_t>(kLargestRadius * from.width()) + 2;
  const std::size_t bordered = static_cast<std::size_t>(from.width()) + 2 * borderMost;
  auto* sums = scratch.buffer<std::uint32_t>(kSumBuffer, bordered + 1);
  constexpr int kAlignment = 64;
  auto* borderedRow = scratch.buffer<std::uint8_t>(kRowBuffer, bordered + 2 * kAlignment);
  for (const int plane : kOpaquePlanes) {
    const PlaneView a = planeOf(from, plane);
    const PlaneView b = planeOf(to, plane);
    const WritablePlane target = writablePlaneOf(out, plane);
    const int radius256 = static_cast<int>(std::lround(256 * radius / stepOf(plane)));
    const int border = radius256 / 256 + 1;
    // One off the vectors' boundary, so that the row is not written past the cache: it is read at once.
    const int begin = (border / kAlignment + 1) * kAlignment + 1;
    std::uint8_t* row = borderedRow + begin;
    for (int y = 0; y < target.height; ++y) {
      mixRow(a.row(y), b.row(y), weight, row, target.width);
      std::fill_n(row - border, border, row[0]);
      std::fill_n(row + target.width, border, row[target.width - 1]);
      boxRow(row - border, radius256, sums, target.row(y), target.width);
    }
  }
}

void GrowablePoissonDisk::mix(const Frame& from, const Frame& to, const MixPoint& point,
                              TransitionScratch& scratch, Frame& out) const {
  constexpr double kBetweenTaps = 0.2;
  const double radius = kLargestDisk * from.height() * smoothStep(depthAt(point.position));
  const int weight = hiddenFadeWeight(point.position);
  Frame& small = smallFade(from, to, weight, scratch);
  Frame& filled = scratch.frame(kSparePlace, small.size());
  // The taps are so far apart that a fine pattern would show; a small disk fills what lies between them.
  blurByDisk(small, kBetweenTaps * radius / kShrink, scratch, filled);
  blurByDisk(filled, radius / kShrink, scratch, small);
  const int strength = static_cast<int>(std::lround(255 * smoothStep(2 * radius / kHidingSmear)));
  drawSoftened(from, to, weight, small, strength, scratch, out);
}

void TelescopicBlur::mix(const Frame& from, const Frame& to, const MixPoint& point,
                         TransitionScratch& scratch, Frame& out) const {
  const FrameSize size = from.size();
  const double depth = smoothStep(depthAt(point.position));
  const int weight = hiddenFadeWeight(point.position);
  const double rim = 0.02 * size.height;
  const double open = std::hypot(size.width, size.height) / 2 + kShrink;
  const double eyepiece = open + (0.3 * size.height - open) * depth;
  Frame& small = smallFade(from, to, weight, scratch);
  Frame& larger = scratch.frame(kSparePlace, small.size());
  moveSmall(small, size, {0, 0.15}, larger);
  blurByDisk(larger, 0.025 * size.height / kShrink, scratch, small);

  Frame& mask = maskFor(small, scratch);
  fillRound(size, scratch, mask, [&](double distance) {
    return 0.35 + 0.4 * smoothStep((distance - eyepiece) / (0.25 * size.height));
  });
  auto* black = scratch.buffer<std::uint8_t>(kRowBuffer, static_cast<std::size_t>(small.width()));
  for (const int plane : kOpaquePlanes) {
    const PlaneView blurred = planeOf(small, plane);
    const WritablePlane darkened = writablePlaneOf(larger, plane);
    const PlaneView light = planeOf(mask, maskPlaneOf(plane));
    std::fill_n(black, darkened.width, static_cast<std::uint8_t>(blackOf(plane)));
    for (int y = 0; y < darkened.height; ++y)
      mixMaskedRow(black, blurred.row(y), light.row(y), darkened.row(y), darkened.width);
  }
  fillRound(size, scratch, mask, [&](double distance) { return smoothStep((distance - eyepiece) / rim); });
  drawSoftened(from, to, weight, larger, mask, scratch, out);
}

void Sharpen::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                  Frame& out) const {
  constexpr double kLargestGain = 5;
  struct Range {
    int low;
    int high;
  };
  constexpr Range kLegal[] = {{16, 235}, {16, 240}, {16, 240}};
  const int gain256 = static_cast<int>(std::lround(256 * kLargestGain * smoothStep(depthAt(point.position))));
  Frame& faded = scratch.frame(kSmallPlace, from.size());
  crossFade(from, to, hiddenFadeWeight(point.position), faded);
  for (const int plane : kOpaquePlanes) {
    const PlaneView source = planeOf(faded, plane);
    const WritablePlane target = writablePlaneOf(out, plane);
    // Edges as wide for the eye in a large picture as in a small one.
    const int spacing = std::max(1, static_cast<int>(std::lround(from.height() / 400.0 / stepOf(plane))));
    const auto width = static_cast<std::size_t>(target.width);
    const auto border = 2 * static_cast<std::size_t>(spacing);
    auto* columns = scratch.buffer<std::uint16_t>(kRowBuffer, width + 2 * border);
    for (int y = 0; y < target.height; ++y) {
      std::array<const std::uint8_t*, 5> rows;
      for (int i = 0; i < 5; ++i)
        rows[static_cast<std::size_t>(i)] =
            source.row(std::clamp(y + (i - 2) * spacing, 0, source.height - 1));
      binomialColumns(rows, columns + border, target.width);
      std::fill_n(columns, border, columns[border]);
      std::fill_n(columns + border + width, border, columns[border + width - 1]);
      sharpenRow(source.row(y), columns, spacing, gain256, kLegal[plane].low, kLegal[plane].high,
                 target.row(y), target.width);
    }
  }
}

void ZoomBlur::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                   Frame& out) const {
  constexpr double kLargestSmear = 0.4;
  const double position = std::clamp(point.position, 0.0, 1.0);
  const ZoomStep step{hiddenFadeWeight(position),
                      {0, 1.6 * std::pow(position, 1.5)},
                      {0, -0.9 * (1 - position) * (1 - position)},
                      kLargestSmear * smoothStep(depthAt(position))};
  const Frame& small = smallZoom(from, to, step, scratch);
  Frame& mask = maskFor(small, scratch);
  fillRound(from.size(), scratch, mask,
            [&](double distance) { return smoothStep(distance * step.smear / kHidingSmear); });
  drawZoomed(from, to, step, small, mask, scratch, out);
}

}  // namespace korvia

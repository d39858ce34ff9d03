#include "SmallPicture.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace korvia {

namespace {

using ShrinkRows = std::array<const std::uint8_t*, kShrink>;

ShrinkRows rowsFrom(const PlaneView& plane, int y) {
  ShrinkRows rows;
  for (int i = 0; i < kShrink; ++i)
    rows[static_cast<std::size_t>(i)] = plane.row(std::min(y + i, plane.height - 1));
  return rows;
}

/// The two rows of the small picture around a row of the full size.
struct RowPair {
  const std::uint8_t* upper;
  const std::uint8_t* lower;
  /// Weight of the lower row, of 8.
  int lowerWeight;
};

RowPair rowsAround(const PlaneView& small, int y) {
  constexpr int kLowerWeights[kShrink] = {5, 7, 1, 3};
  const int phase = y % kShrink;
  const int upper = y / kShrink - (phase < kShrink / 2 ? 1 : 0);
  return {small.row(std::max(upper, 0)), small.row(std::min(upper + 1, small.height - 1)),
          kLowerWeights[phase]};
}

}  // namespace

PlanePoint centreOf(FrameSize size, int step) {
  return {size.width / (2.0 * step) - 0.5, size.height / (2.0 * step) - 0.5};
}

FrameSize smallSizeOf(FrameSize size) {
  return {(size.width + kShrink - 1) / kShrink, (size.height + kShrink - 1) / kShrink};
}

void shrinkFade(const Frame& from, const Frame& to, int weight, Frame& small) {
  for (const int plane : kOpaquePlanes) {
    const PlaneView a = planeOf(weight < 256 ? from : to, plane);
    const PlaneView b = planeOf(weight > 0 ? to : from, plane);
    const WritablePlane shrunk = writablePlaneOf(small, plane);
    for (int y = 0; y < shrunk.height; ++y)
      mixShrunkRow(rowsFrom(a, y * kShrink), rowsFrom(b, y * kShrink), weight, shrunk.row(y), a.width);
  }
}

Frame& smallFade(const Frame& from, const Frame& to, int weight, TransitionScratch& scratch) {
  Frame& small = scratch.frame(kSmallFrame, smallSizeOf(from.size()));
  shrinkFade(from, to, weight, small);
  return small;
}

void enlargedRow(const PlaneView& small, int y, std::uint8_t* out, int width) {
  const RowPair rows = rowsAround(small, y);
  enlargeRow(rows.upper, rows.lower, rows.lowerWeight, small.width, out, width);
}

ColumnSpan spanBelowFull(const PlaneView& small, int y, int width) {
  const RowPair rows = rowsAround(small, y);
  const auto allFull = [&](const std::uint8_t* row) {
    return row[0] == 255 && std::memcmp(row, row + 1, static_cast<std::size_t>(small.width) - 1) == 0;
  };
  if (allFull(rows.upper) && allFull(rows.lower))
    return {};
  const auto full = [&](int i) { return rows.upper[i] == 255 && rows.lower[i] == 255; };
  int begin = 0;
  int end = small.width;
  while (full(begin))
    ++begin;
  while (full(end - 1))
    --end;
  // An enlarged sample reaches half-way into the columns of its neighbours.
  return {std::max((begin - 1) * kShrink, 0), std::min((end + 1) * kShrink, width)};
}

void drawSoftened(const Frame& from, const Frame& to, int weight, const Frame& small, int strength,
                  TransitionScratch& scratch, Frame& out) {
  const auto width = static_cast<std::size_t>(out.width());
  auto* soft = scratch.buffer<std::uint8_t>(0, width);
  auto* mask = scratch.buffer<std::uint8_t>(1, width);
  std::fill_n(mask, width, static_cast<std::uint8_t>(strength));
  for (const int plane : kOpaquePlanes) {
    const PlaneView a = planeOf(from, plane);
    const PlaneView b = planeOf(to, plane);
    const PlaneView blurred = planeOf(small, plane);
    const WritablePlane target = writablePlaneOf(out, plane);
    for (int y = 0; y < target.height; ++y) {
      enlargedRow(blurred, y, strength == 255 ? target.row(y) : soft, target.width);
      if (strength < 255)
        softenRow(a.row(y), b.row(y), weight, soft, mask, target.row(y), target.width);
    }
  }
}

void drawSoftened(const Frame& from, const Frame& to, int weight, const Frame& small, const Frame& mask,
                  TransitionScratch& scratch, Frame& out) {
  const auto width = static_cast<std::size_t>(out.width());
  auto* soft = scratch.buffer<std::uint8_t>(0, width);
  auto* strength = scratch.buffer<std::uint8_t>(1, width);
  for (const int plane : kOpaquePlanes) {
    const PlaneView a = planeOf(from, plane);
    const PlaneView b = planeOf(to, plane);
    const PlaneView blurred = planeOf(small, plane);
    const PlaneView strengths = planeOf(mask, maskPlaneOf(plane));
    const WritablePlane target = writablePlaneOf(out, plane);
    for (int y = 0; y < target.height; ++y) {
      const ColumnSpan span = spanBelowFull(strengths, y, target.width);
      if (span.begin == span.end) {
        enlargedRow(blurred, y, target.row(y), target.width);
        continue;
      }
      enlargedRow(blurred, y, soft, target.width);
      enlargedRow(strengths, y, strength, target.width);
      softenRow(a.row(y), b.row(y), weight, soft, strength, target.row(y), target.width);
    }
  }
}

}  // namespace korvia

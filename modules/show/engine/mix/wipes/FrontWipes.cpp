#include "FrontWipes.h"

#include <cstring>

#include "engine/kernels/MaskKernels.h"
#include "engine/mix/Curves.h"
#include "engine/mix/SeededRandom.h"

namespace korvia {

namespace {

/// Columns of a block. The extremes of a block tell whether all of its mask has one value.
constexpr int kBlock = 64;

constexpr int kMixed = -1;

struct Block {
  float levelMin = 0;
  float levelMax = 0;
  float slopeMin = 0;
  float slopeMax = 0;
  /// The value that all of its mask had in the last row; kMixed where it had several.
  int value = kMixed;
};

constexpr int kDrops = 12;
/// How far the longest drop is ahead of the shortest, as a part of the height of the picture.
constexpr double kDropLength = 0.34;
/// On the steep flanks of a drop the soft edge is stretched vertically, up to this factor, so that it has
/// the same width everywhere.
constexpr double kFlankMax = 2;

/// A value and its derivative.
struct Slope {
  double value = 0;
  double slope = 0;
};

/// Half of a drop as a function of the place between the gap at 0 and the tip at 1: a steep flank and a
/// round tip, with slope 0 at both ends.
Slope dropSide(double along) {
  constexpr double kFlankBegin = 0.08;
  constexpr double kFlank = 0.5;
  constexpr double kTip = 0.25;
  const double flank = std::clamp((along - kFlankBegin) / kFlank, 0.0, 1.0);
  const double rest = 1 - along;
  // A polynomial with slope 0 at both ends and little curvature at the tip.
  const double round = 1 - rest * rest * (1 + 2 * along * rest);
  const double roundSlope = rest * along * (10 - 8 * along);
  return {(1 - kTip) * smoothStep(flank) + kTip * round,
          (1 - kTip) * 6 * flank * (1 - flank) / kFlank + kTip * roundSlope};
}

/// How far the front is behind the tip of the longest drop, 0 to 1, and the derivative of that, at a place
/// from 0, left, to 1. Smooth.
Slope dropLag(std::uint32_t seed, double across) {
  // Knots alternate between gaps and tips; each is moved sideways by a random amount.
  constexpr int kFirst = -1;
  const auto drawn = [&](int knot, int which) {
    return seededRandom(seed, static_cast<std::uint32_t>(2 * (knot - kFirst) + which));
  };
  const auto placeOf = [&](int knot) { return (knot + 0.6 * (drawn(knot, 0) - 0.5)) / (2 * kDrops); };
  const auto isTip = [](int knot) { return knot % 2 != 0; };
  const auto lagOf = [&](int knot) {
    return isTip(knot) ? 0.65 * drawn(knot, 1) : 0.8 + 0.2 * drawn(knot, 1);
  };
  // Knots move by less than half of their distance, so the place lies between the nearest one and one of its
  // neighbours.
  int right = static_cast<int>(std::lround(across * 2 * kDrops));
  if (placeOf(right) <= across)
    ++right;
  const int left = right - 1;
  const int gap = isTip(left) ? right : left;
  const int tip = isTip(left) ? left : right;
  const double width = placeOf(tip) - placeOf(gap);
  const Slope side = dropSide((across - placeOf(gap)) / width);
  const double rise = lagOf(tip) - lagOf(gap);
  return {lagOf(gap) + rise * side.value, rise * side.slope / width};
}

class FrontMask {
 public:
  FrontMask(const PlaneGrid& grid, const FrontColumn* columns, double reached, TransitionScratch& scratch)
      : grid_(grid),
        level_(scratch.buffer<float>(0, static_cast<std::size_t>(grid.width))),
        slope_(scratch.buffer<float>(1, static_cast<std::size_t>(grid.width))),
        blocks_(scratch.buffer<Block>(2, static_cast<std::size_t>(grid.width) / kBlock + 1)),
        mask_(scratch.buffer<std::uint8_t>(3, static_cast<std::size_t>(grid.width))) {
    for (int x = 0; x < grid.width; ++x) {
      const FrontColumn& front = columns[x];
      level_[x] = static_cast<float>(((reached - front.top) / front.feather + 0.5) * 255);
      slope_[x] = static_cast<float>((front.bottom - front.top) / front.feather * 255 / grid.size.height);
    }
    for (int begin = 0; begin < grid.width; begin += kBlock) {
      const int end = std::min(begin + kBlock, grid.width);
      const auto [levelMin, levelMax] = std::minmax_element(level_ + begin, level_ + end);
      const auto [slopeMin, slopeMax] = std::minmax_element(slope_ + begin, slope_ + end);
      blocks_[begin / kBlock] = {*levelMin, *levelMax, *slopeMin, *slopeMax, kMixed};
    }
  }

  const std::uint8_t* row(int y) {
    const float place = static_cast<float>(grid_.y(y));
    bool changed = false;
    int mixedBegin = 0;
    const auto drawMixed = [&](int end) {
      if (mixedBegin < end)
        slopedMaskRow(level_ + mixedBegin, slope_ + mixedBegin, place, mask_ + mixedBegin, end - mixedBegin);
    };
    for (int begin = 0; begin < grid_.width; begin += kBlock) {
      Block& block = blocks_[begin / kBlock];
      const int value = valueOf(block, place);
      changed = changed || value == kMixed || value != block.value;
      if (value != kMixed) {
        const int end = std::min(begin + kBlock, grid_.width);
        drawMixed(begin);
        mixedBegin = end;
        if (value != block.value)
          std::memset(mask_ + begin, value, static_cast<std::size_t>(end - begin));
      }
      block.value = value;
    }
    drawMixed(grid_.width);
    return changed ? mask_ : nullptr;
  }

 private:
  static int valueOf(const Block& block, float place) {
    if (block.levelMin - place * block.slopeMax >= 255)
      return 255;
    return block.levelMax - place * block.slopeMin <= 0 ? 0 : kMixed;
  }

  PlaneGrid grid_;
  float* level_;
  float* slope_;
  Block* blocks_;
  std::uint8_t* mask_;
};

}  // namespace

double FrontWipe::reached(FrameSize size, const MixPoint& point) const {
  return point.position * (1 + featherMax(size)) - featherMax(size) / 2;
}

double FrontWipe::coverage(FrameSize size, const MixPoint& point, double x, double y) const {
  const FrontColumn front = column(size, point.seed, x);
  const double arrival = front.top + (front.bottom - front.top) * y / size.height;
  return std::clamp((reached(size, point) - arrival) / front.feather + 0.5, 0.0, 1.0);
}

void FrontWipe::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                    Frame& out) const {
  const FrameSize size = out.size();
  const PlaneGrid luma(size, PlaneGroup::Luma);
  const PlaneGrid chroma(size, PlaneGroup::Chroma);
  const FrontColumn* columns = scratch.table<FrontColumn>(
      this, size, point.seed, static_cast<std::size_t>(luma.width) + static_cast<std::size_t>(chroma.width),
      [&](FrontColumn* table) {
        for (const PlaneGrid& grid : {luma, chroma})
          for (int x = 0; x < grid.width; ++x)
            *table++ = column(size, point.seed, grid.x(x));
      });
  mixByMask(from, to, scratch, out, [&](const PlaneGrid& grid) {
    return FrontMask(grid, grid.step == 1 ? columns : columns + luma.width, reached(size, point), scratch);
  });
}

FrontColumn CornerWipe::column(FrameSize size, std::uint32_t /*seed*/, double x) const {
  const double across = x / size.width;
  const bool left = corner_ == Corner::TopLeft || corner_ == Corner::BottomLeft;
  const bool top = corner_ == Corner::TopLeft || corner_ == Corner::TopRight;
  const double begin = (left ? across : 1 - across) / 2;
  return {top ? begin : begin + 0.5, top ? begin + 0.5 : begin, featherMax(size)};
}

double CornerWipe::featherMax(FrameSize size) const {
  return featherOf(size) * std::hypot(0.5 / size.width, 0.5 / size.height);
}

FrontColumn BloodWipe::column(FrameSize size, std::uint32_t seed, double x) const {
  const Slope lag = dropLag(seed, x / size.width);
  const double whole = 1 + kDropLength;
  const double begin = kDropLength * lag.value / whole;
  const double steepness = kDropLength * lag.slope * size.height / size.width;
  const double across = std::min(std::hypot(1, steepness), kFlankMax);
  return {begin, begin + 1 / whole, featherMax(size) * across / kFlankMax};
}

double BloodWipe::featherMax(FrameSize size) const {
  return kFlankMax * featherOf(size) / size.height / (1 + kDropLength);
}

}  // namespace korvia

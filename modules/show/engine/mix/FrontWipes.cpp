#include "FrontWipes.h"

#include <cstring>

#include "engine/kernels/MaskKernels.h"
#include "engine/mix/Chance.h"

namespace korvia {

namespace {

/// Columns whose masks are told from their extremes where all of them are the same.
constexpr int kBlock = 64;

struct Block {
  float levelMin = 0;
  float levelMax = 0;
  float slopeMin = 0;
  float slopeMax = 0;
};

constexpr int kDrops = 15;
/// The longest drop is ahead of what hangs back farthest by this part of the picture's height.
constexpr double kDropLength = 0.6;
/// On the flanks of a drop the edge is softened across, up to so many times as tall as it is wide.
constexpr double kFlankMax = 4;

/// A smooth line through the tips of the drops and the gaps between them.
struct DropLine {
  /// 0, the farthest ahead, to 1.
  double lag = 0;
  /// Change of the lag over the picture's width.
  double slope = 0;
};

DropLine dropLine(std::uint32_t seed, double across) {
  // Knots by turns in a gap and on a tip, each moved aside by chance.
  const auto knotPlace = [&](int knot) {
    return (knot + 0.6 * (chance(seed, static_cast<std::uint32_t>(2 * knot)) - 0.5)) / (2 * kDrops);
  };
  const auto knotLag = [&](int knot) {
    const double drawn = chance(seed, static_cast<std::uint32_t>(2 * knot + 1));
    return knot % 2 == 0 ? 0.75 + 0.25 * drawn : 0.65 * drawn;
  };
  int knot = static_cast<int>(std::floor(across * 2 * kDrops)) + 2;
  while (knotPlace(knot - 2) > across)
    --knot;
  while (knotPlace(knot - 1) <= across)
    ++knot;
  // `across` lies between the knots before and at `knot - 1`.
  const double begin = knotPlace(knot - 2);
  const double width = knotPlace(knot - 1) - begin;
  const double along = (across - begin) / width;
  const double rise = knotLag(knot - 1) - knotLag(knot - 2);
  return {knotLag(knot - 2) + rise * along * along * (3 - 2 * along), rise * 6 * along * (1 - along) / width};
}

}  // namespace

double FrontWipe::coverage(FrameSize size, const MixPoint& point, double x, double y) const {
  const FrontColumn front = column(size, point.seed, x);
  const double arrival = front.top + (front.bottom - front.top) * y / size.height;
  return std::clamp((point.position * (1 + featherMax(size)) - arrival) / front.feather, 0.0, 1.0);
}

namespace {

class FrontMask {
 public:
  FrontMask(const PlaneGrid& grid, const FrontColumn* columns, double reached, TransitionScratch& scratch)
      : grid_(grid),
        level_(scratch.buffer<float>(0, static_cast<std::size_t>(grid.width))),
        slope_(scratch.buffer<float>(1, static_cast<std::size_t>(grid.width))),
        blocks_(scratch.buffer<Block>(2, static_cast<std::size_t>(grid.width / kBlock + 1))),
        mask_(scratch.buffer<std::uint8_t>(3, static_cast<std::size_t>(grid.width))) {
    for (int x = 0; x < grid.width; ++x) {
      const FrontColumn& front = columns[x];
      level_[x] = static_cast<float>((reached - front.top) / front.feather * 255);
      slope_[x] = static_cast<float>((front.bottom - front.top) / front.feather * 255 / grid.size.height);
    }
    for (int begin = 0; begin < grid.width; begin += kBlock) {
      const int end = std::min(begin + kBlock, grid.width);
      const auto [levelMin, levelMax] = std::minmax_element(level_ + begin, level_ + end);
      const auto [slopeMin, slopeMax] = std::minmax_element(slope_ + begin, slope_ + end);
      blocks_[begin / kBlock] = {*levelMin, *levelMax, *slopeMin, *slopeMax};
    }
  }

  const std::uint8_t* row(int y) {
    const float place = static_cast<float>(grid_.y(y));
    for (int begin = 0; begin < grid_.width; begin += kBlock) {
      const int count = std::min(kBlock, grid_.width - begin);
      const Block& block = blocks_[begin / kBlock];
      if (block.levelMin - place * block.slopeMax >= 255)
        std::memset(mask_ + begin, 255, static_cast<std::size_t>(count));
      else if (block.levelMax - place * block.slopeMin <= 0)
        std::memset(mask_ + begin, 0, static_cast<std::size_t>(count));
      else
        slopedMaskRow(level_ + begin, slope_ + begin, place, mask_ + begin, count);
    }
    return mask_;
  }

 private:
  PlaneGrid grid_;
  float* level_;
  float* slope_;
  Block* blocks_;
  std::uint8_t* mask_;
};

}  // namespace

void FrontWipe::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                    Frame& out) const {
  const FrameSize size = out.size();
  const double reached = point.position * (1 + featherMax(size));
  const PlaneGrid luma(size, false);
  const PlaneGrid chroma(size, true);
  const FrontColumn* columns = scratch.table<FrontColumn>(
      this, size, point.seed, static_cast<std::size_t>(luma.width + chroma.width), [&](FrontColumn* table) {
        for (const PlaneGrid& grid : {luma, chroma})
          for (int x = 0; x < grid.width; ++x)
            *table++ = column(size, point.seed, grid.x(x));
      });
  mixByMask(from, to, scratch, out, [&](const PlaneGrid& grid) {
    return FrontMask(grid, grid.step == 1 ? columns : columns + luma.width, reached, scratch);
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
  const DropLine line = dropLine(seed, x / size.width);
  const double whole = 1 + kDropLength;
  const double begin = kDropLength * line.lag / whole;
  const double steepness = kDropLength * line.slope * size.height / size.width;
  const double across = std::min(std::hypot(1, steepness), kFlankMax);
  return {begin, begin + 1 / whole, featherMax(size) * across / kFlankMax};
}

double BloodWipe::featherMax(FrameSize size) const {
  return kFlankMax * featherOf(size) / size.height / (1 + kDropLength);
}

}  // namespace korvia

#include "FieldKernels.h"

#include <algorithm>
#include <cstdlib>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/FieldKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

inline int difference(int a, int b) {
  return std::abs(a - b);
}

inline int motionAt(const FieldLines& lines, int x) {
  return std::max({difference(lines.line[x], lines.lineBefore[x]),
                   difference(lines.above[x], lines.aboveBefore[x]),
                   difference(lines.below[x], lines.belowBefore[x])});
}

inline std::uint8_t joinSample(const FieldLines& lines, int x, int width) {
  const int left = std::max(x - 1, 0);
  const int right = std::min(x + 1, width - 1);
  const int line = lines.line[x];
  const int above = lines.above[x];
  const int below = lines.below[x];
  const int motion = std::max({motionAt(lines, left), motionAt(lines, x), motionAt(lines, right)});
  if (motion <= kStillLimit ||
      (line >= std::min(above, below) - kCombLimit && line <= std::max(above, below) + kCombLimit))
    return static_cast<std::uint8_t>(line);
  const int straight = difference(above, below);
  const int falling = difference(lines.above[left], lines.below[right]);
  const int rising = difference(lines.above[right], lines.below[left]);
  if (falling < straight && falling <= rising)
    return static_cast<std::uint8_t>((lines.above[left] + lines.below[right] + 1) / 2);
  if (rising < straight)
    return static_cast<std::uint8_t>((lines.above[right] + lines.below[left] + 1) / 2);
  return static_cast<std::uint8_t>((above + below + 1) / 2);
}

inline void addSampleSums(const FieldLines& lines, int x, CombSums& sums) {
  const int around = lines.above[x] + lines.below[x];
  sums.now += static_cast<std::uint32_t>(difference(2 * lines.line[x], around));
  sums.before += static_cast<std::uint32_t>(difference(2 * lines.lineBefore[x], around));
  sums.moved += static_cast<std::uint32_t>(difference(lines.line[x], lines.lineBefore[x]));
}

#if HWY_TARGET == HWY_SCALAR

void joinField(const FieldLines& lines, int begin, int end, int width, std::uint8_t* out) {
  for (int x = begin; x < end; ++x)
    out[x] = joinSample(lines, x, width);
}

void addCombSums(const FieldLines& lines, int begin, int count, CombSums& sums) {
  for (int x = begin; x < begin + count; ++x)
    addSampleSums(lines, x, sums);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

void joinField(const FieldLines& lines, int begin, int end, int width, std::uint8_t* out) {
  const hn::ScalableTag<std::uint8_t> d;
  const int lanes = static_cast<int>(hn::Lanes(d));
  const auto stillLimit = hn::Set(d, std::uint8_t{kStillLimit});
  const auto combLimit = hn::Set(d, std::uint8_t{kCombLimit});
  const auto load = [&](const std::uint8_t* row, int x) HWY_ATTR { return hn::LoadU(d, row + x); };
  const auto apart = [&](auto a, auto b)
                         HWY_ATTR { return hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a)); };
  const auto motion = [&](int x) HWY_ATTR {
    return hn::Max(apart(load(lines.line, x), load(lines.lineBefore, x)),
                   hn::Max(apart(load(lines.above, x), load(lines.aboveBefore, x)),
                           apart(load(lines.below, x), load(lines.belowBefore, x))));
  };
  int x = begin;
  // Vectors read one sample to either side.
  for (; x < end && x < 1; ++x)
    out[x] = joinSample(lines, x, width);
  for (; x + lanes <= end && x + lanes < width; x += lanes) {
    const auto line = load(lines.line, x);
    const auto above = load(lines.above, x);
    const auto below = load(lines.below, x);
    const auto moved = hn::Max(motion(x), hn::Max(motion(x - 1), motion(x + 1)));
    const auto lowest = hn::SaturatedSub(hn::Min(above, below), combLimit);
    const auto highest = hn::SaturatedAdd(hn::Max(above, below), combLimit);
    const auto kept =
        hn::Or(hn::Eq(hn::Min(moved, stillLimit), moved),
               hn::And(hn::Eq(hn::Max(line, lowest), line), hn::Eq(hn::Min(line, highest), line)));
    const auto straight = apart(above, below);
    const auto fallingAbove = load(lines.above, x - 1);
    const auto fallingBelow = load(lines.below, x + 1);
    const auto risingAbove = load(lines.above, x + 1);
    const auto risingBelow = load(lines.below, x - 1);
    const auto falling = apart(fallingAbove, fallingBelow);
    const auto rising = apart(risingAbove, risingBelow);
    const auto isRising = hn::Not(hn::Eq(hn::Max(rising, straight), rising));
    const auto isFalling = hn::And(hn::Not(hn::Eq(hn::Max(falling, straight), falling)),
                                   hn::Eq(hn::Min(falling, rising), falling));
    auto edge = hn::AverageRound(above, below);
    edge = hn::IfThenElse(isRising, hn::AverageRound(risingAbove, risingBelow), edge);
    edge = hn::IfThenElse(isFalling, hn::AverageRound(fallingAbove, fallingBelow), edge);
    hn::StoreU(hn::IfThenElse(kept, line, edge), d, out + x);
  }
  for (; x < end; ++x)
    out[x] = joinSample(lines, x, width);
}

void addCombSums(const FieldLines& lines, int begin, int count, CombSums& sums) {
  const hn::ScalableTag<std::uint16_t> d16;
  const hn::Half<hn::Repartition<std::uint8_t, decltype(d16)> > d8;
  const int lanes = static_cast<int>(hn::Lanes(d16));
  const auto load = [&](const std::uint8_t* row, int x)
                        HWY_ATTR { return hn::PromoteTo(d16, hn::LoadU(d8, row + x)); };
  const auto apart = [&](auto a, auto b)
                         HWY_ATTR { return hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a)); };
  auto now = hn::Zero(d16);
  auto before = hn::Zero(d16);
  auto moved = hn::Zero(d16);
  int x = begin;
  // At most 64 additions of at most 510 fit a lane; a block is far narrower.
  const int end = begin + std::min(count, 64 * lanes);
  for (; x + lanes <= end; x += lanes) {
    const auto line = load(lines.line, x);
    const auto lineBefore = load(lines.lineBefore, x);
    const auto around = hn::Add(load(lines.above, x), load(lines.below, x));
    now = hn::Add(now, apart(hn::Add(line, line), around));
    before = hn::Add(before, apart(hn::Add(lineBefore, lineBefore), around));
    moved = hn::Add(moved, apart(line, lineBefore));
  }
  const auto total = [&](auto lanesOf) HWY_ATTR {
    const hn::RepartitionToWide<decltype(d16)> d32;
    const auto low = hn::And(hn::BitCast(d32, lanesOf), hn::Set(d32, 0xFFFFu));
    const auto high = hn::ShiftRight<16>(hn::BitCast(d32, lanesOf));
    return hn::GetLane(hn::SumOfLanes(d32, hn::Add(low, high)));
  };
  sums.now += total(now);
  sums.before += total(before);
  sums.moved += total(moved);
  for (; x < begin + count; ++x)
    addSampleSums(lines, x, sums);
}

#endif

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(joinField);
HWY_EXPORT(addCombSums);

void joinField(const FieldLines& lines, int begin, int end, int width, std::uint8_t* out) {
  HWY_DYNAMIC_DISPATCH(joinField)(lines, begin, end, width, out);
}

void addCombSums(const FieldLines& lines, int begin, int count, CombSums& sums) {
  HWY_DYNAMIC_DISPATCH(addCombSums)(lines, begin, count, sums);
}

}  // namespace korvia
#endif

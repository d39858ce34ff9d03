#include "BlurKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/BlurKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <cmath>

#include "engine/kernels/RowLoop-inl.h"

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

namespace {

using ShrinkRows = std::array<const std::uint8_t*, kShrink>;
using TapRows = std::array<RowTap, kTapCount>;
using FiveRows = std::array<const std::uint8_t*, 5>;

struct Soften {
  const std::uint8_t* a;
  const std::uint8_t* b;
  int weight;
  const std::uint8_t* soft;
  const std::uint8_t* mask;
  int one(int x) const { return mixedBy255(mixedBy256(a[x], b[x], weight), soft[x], mask[x]); }
  Vec many(int x) const {
    return mixedBy255(mixedBy256(load(a + x), load(b + x), weight), load(soft + x), load(mask + x));
  }
};

struct AverageOfThree {
  const std::uint8_t* a;
  const std::uint8_t* b;
  const std::uint8_t* c;
  int one(int x) const { return (a[x] + b[x] + c[x] + 1) / 3; }
  Vec many(int x) const {
    // 65536 / 3, rounded up: exact for the sum of three samples.
    constexpr int kThird = 21846;
    const Vec sum = hn::Add(hn::Add(load(a + x), load(b + x)), hn::Add(load(c + x), constant(1)));
    return hn::MulHigh(sum, constant(kThird));
  }
};

struct AverageTaps {
  const TapRows& taps;
  int one(int x) const {
    int sum = 128;
    for (const RowTap& tap : taps) {
      const int top = tap.upper[x] * (16 - tap.right) + tap.upper[x + 1] * tap.right;
      const int bottom = tap.lower[x] * (16 - tap.right) + tap.lower[x + 1] * tap.right;
      sum += (top * (16 - tap.down) + bottom * tap.down + 32) >> 6;
    }
    return sum >> 8;
  }
  Vec many(int x) const {
    const Vec sixteen = constant(16);
    Vec sum = constant(128);
    for (const RowTap& tap : taps) {
      const Vec right = constant(tap.right);
      const Vec left = hn::Sub(sixteen, right);
      const Vec down = constant(tap.down);
      const Vec top = hn::Add(hn::Mul(load(tap.upper + x), left), hn::Mul(load(tap.upper + x + 1), right));
      const Vec bottom = hn::Add(hn::Mul(load(tap.lower + x), left), hn::Mul(load(tap.lower + x + 1), right));
      const Vec value = hn::Add(hn::Mul(top, hn::Sub(sixteen, down)), hn::Mul(bottom, down));
      sum = hn::Add(sum, hn::ShiftRight<6>(hn::Add(value, constant(32))));
    }
    return hn::ShiftRight<8>(sum);
  }
};

struct AddTo {
  const std::uint8_t* row;
  const std::uint16_t* sums;
  int one(int x) const { return sums[x] + row[x]; }
  Vec many(int x) const { return hn::Add(hn::LoadU(kSamples, sums + x), load(row + x)); }
};

inline int binomial(int outer, int inner, int own) {
  return outer + 4 * inner + 6 * own;
}
inline Vec binomial(Vec outer, Vec inner, Vec own) {
  return hn::Add(hn::Add(outer, hn::ShiftLeft<2>(hn::Add(inner, own))), hn::Add(own, own));
}

struct BinomialColumns {
  const FiveRows& rows;
  int one(int x) const { return binomial(rows[0][x] + rows[4][x], rows[1][x] + rows[3][x], rows[2][x]); }
  Vec many(int x) const {
    return binomial(hn::Add(load(rows[0] + x), load(rows[4] + x)),
                    hn::Add(load(rows[1] + x), load(rows[3] + x)), load(rows[2] + x));
  }
};

struct Sharpen {
  const std::uint8_t* row;
  const std::uint16_t* columns;
  int spacing;
  int gain256;
  int low;
  int high;
  int one(int x) const {
    const auto at = [&](int place) { return int{columns[x + place * spacing]}; };
    const int mean = (binomial(at(0) + at(4), at(1) + at(3), at(2)) + 2) >> 2;
    const int all = row[x] * 64 - mean;
    const int difference = all - std::clamp(all, -kSharpenCore, kSharpenCore);
    const int driven = row[x] + ((difference * gain256 + (1 << 13)) >> 14);
    return std::clamp(driven, std::min<int>(row[x], low), std::max<int>(row[x], high));
  }
  Vec many(int x) const {
    const auto number = [](int value) HWY_ATTR { return hn::Set(kSigned, static_cast<std::int16_t>(value)); };
    const auto at = [&](int place) HWY_ATTR { return hn::LoadU(kSamples, columns + x + place * spacing); };
    const Vec sum = binomial(hn::Add(at(0), at(4)), hn::Add(at(1), at(3)), at(2));
    const auto mean = hn::BitCast(kSigned, hn::ShiftRight<2>(hn::Add(sum, constant(2))));
    const auto own = hn::BitCast(kSigned, load(row + x));
    const auto all = hn::Sub(hn::ShiftLeft<6>(own), mean);
    const auto difference = hn::Sub(all, hn::Min(hn::Max(all, number(-kSharpenCore)), number(kSharpenCore)));
    // MulFixedPoint15 shifts by 15 and rounds; on the doubled difference that is the formula's shift by 14.
    const auto driven = hn::Add(own, hn::MulFixedPoint15(hn::Add(difference, difference), number(gain256)));
    return hn::BitCast(kSamples,
                       hn::Min(hn::Max(driven, hn::Min(own, number(low))), hn::Max(own, number(high))));
  }
};

/// The divisor of boxRow, with 8 fraction bits, and the extent of its box.
struct Box {
  explicit Box(int radius256)
      : whole(radius256 >> 8),
        fraction(radius256 & 255),
        scale(1.0F / static_cast<float>(256 + 2 * radius256)) {}
  int whole;
  int fraction;
  float scale;
  int last() const { return 2 * whole + 2; }
};

/// sums[x] = the sum of the first x samples.
void sumUp(const std::uint8_t* row, std::uint32_t* sums, int count) {
  std::uint32_t sum = 0;
  sums[0] = 0;
  for (int x = 0; x < count; ++x) {
    sum += row[x];
    sums[x + 1] = sum;
  }
}

// Shrinking, enlarging and the box mean have loops of their own, since they do not map one sample to one.
// The functions below compute samples one by one: the end of a row, or all of it on a machine without
// vectors.

inline int sumOfSquare(const ShrinkRows& rows, int x, int count) {
  int sum = 0;
  for (const std::uint8_t* row : rows)
    for (int i = x; i < x + kShrink; ++i)
      sum += row[std::min(i, count - 1)];
  return sum;
}

void shrinkFrom(int begin, const ShrinkRows& a, const ShrinkRows& b, int weight, std::uint8_t* out,
                int count) {
  for (int i = begin; i * kShrink < count; ++i) {
    const int sumA = 4 * sumOfSquare(a, i * kShrink, count);
    const int sumB = 4 * sumOfSquare(b, i * kShrink, count);
    const int sum = sumA + (((sumB - sumA) * weight + 128) >> 8);
    out[i] = static_cast<std::uint8_t>((sum + 32) >> 6);
  }
}

/// Of each four samples, the weights in eighths of the neighbour before the first and before the second; the
/// other two mirror them.
constexpr int kOuterWeight = 3;
constexpr int kInnerWeight = 1;

void enlargeFrom(int begin, const std::uint8_t* upper, const std::uint8_t* lower, int lowerWeight, int count,
                 std::uint8_t* out, int outCount) {
  constexpr int kWeights[] = {kOuterWeight, kInnerWeight, kInnerWeight, kOuterWeight};
  const auto column = [&](int i) {
    i = std::clamp(i, 0, count - 1);
    return upper[i] * (8 - lowerWeight) + lower[i] * lowerWeight;
  };
  for (int x = begin; x < outCount; ++x) {
    const int own = x / kShrink;
    const int phase = x % kShrink;
    const int weight = kWeights[phase];
    const int sum = column(own) * (8 - weight) + column(phase < 2 ? own - 1 : own + 1) * weight;
    out[x] = static_cast<std::uint8_t>((sum + 32) >> 6);
  }
}

void boxFrom(int begin, const Box& box, const std::uint8_t* row, const std::uint32_t* sums, std::uint8_t* out,
             int count) {
  for (int x = begin; x < count; ++x) {
    const auto inner = static_cast<int>(sums[x + box.last()] - sums[x + 1]);
    const int sum = inner * 256 + (row[x] + row[x + box.last()]) * box.fraction;
    out[x] = static_cast<std::uint8_t>(std::lrint(static_cast<float>(sum) * box.scale));
  }
}

}  // namespace

void softenRow(const std::uint8_t* a, const std::uint8_t* b, int weight, const std::uint8_t* soft,
               const std::uint8_t* mask, std::uint8_t* HWY_RESTRICT out, int count) {
  runNonTemporal(Soften{a, b, weight, soft, mask}, out, count);
}

void averageOfThreeRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* c,
                       std::uint8_t* HWY_RESTRICT out, int count) {
  run(AverageOfThree{a, b, c}, out, count);
}

void averageTapsRow(const TapRows& taps, std::uint8_t* HWY_RESTRICT out, int count) {
  const AverageTaps kernel{taps};
  const int lanes = static_cast<int>(hn::Lanes(kSamples));
  const int whole = count / lanes * lanes;
  run(kernel, out, whole);
  // A sample alone costs as much as a register full of them, so the last register overlaps the one before.
  if (whole < count && whole > 0)
    hn::StoreU(bytesOf(kernel.many(count - lanes)), kBytes, out + count - lanes);
  else
    run(kernel, out, count, whole);
}

void addRow(const std::uint8_t* row, std::uint16_t* sums, int count) {
  run(AddTo{row, sums}, sums, count);
}

void binomialColumns(const FiveRows& rows, std::uint16_t* HWY_RESTRICT out, int count) {
  run(BinomialColumns{rows}, out, count);
}

void sharpenRow(const std::uint8_t* row, const std::uint16_t* columns, int spacing, int gain256, int low,
                int high, std::uint8_t* HWY_RESTRICT out, int count) {
  run(Sharpen{row, columns, spacing, gain256, low, high}, out, count);
}

#if HWY_TARGET == HWY_SCALAR

void mixShrunkRow(const ShrinkRows& a, const ShrinkRows& b, int weight, std::uint8_t* out, int count) {
  shrinkFrom(0, a, b, weight, out, count);
}

void enlargeRow(const std::uint8_t* upper, const std::uint8_t* lower, int lowerWeight, int count,
                std::uint8_t* out, int outCount) {
  enlargeFrom(0, upper, lower, lowerWeight, count, out, outCount);
}

void boxRow(const std::uint8_t* row, int radius256, std::uint32_t* sums, std::uint8_t* out, int count) {
  const Box box(radius256);
  sumUp(row, sums, count + box.last());
  boxFrom(0, box, row, sums, out, count);
}

#else

void mixShrunkRow(const ShrinkRows& a, const ShrinkRows& b, int weight, std::uint8_t* HWY_RESTRICT out,
                  int count) {
  const hn::ScalableTag<std::uint8_t> d8;
  const hn::RepartitionToWide<decltype(d8)> d16;
  const hn::RepartitionToWide<decltype(d16)> d32;
  const hn::RebindToSigned<decltype(d32)> i32;
  const hn::Rebind<std::uint8_t, decltype(d32)> quarter;
  const int lanes = static_cast<int>(hn::Lanes(d8));
  const auto evenByte = hn::Set(d16, std::uint16_t{0xff});
  const auto evenPair = hn::Set(d32, std::uint32_t{0xffff});
  const auto weightB = hn::Set(i32, weight);
  const auto sumOfSquares = [&](const ShrinkRows& rows, int x) HWY_ATTR {
    auto pairs = hn::Zero(d16);
    for (const std::uint8_t* row : rows) {
      const auto samples = hn::BitCast(d16, hn::LoadU(d8, row + x));
      pairs = hn::Add(pairs, hn::Add(hn::And(samples, evenByte), hn::ShiftRight<8>(samples)));
    }
    const auto wide = hn::BitCast(d32, pairs);
    return hn::BitCast(i32, hn::ShiftLeft<2>(hn::Add(hn::And(wide, evenPair), hn::ShiftRight<16>(wide))));
  };
  const bool fades = a != b;
  int x = 0;
  for (; x + lanes <= count; x += lanes) {
    const auto sumA = sumOfSquares(a, x);
    const auto sumB = fades ? sumOfSquares(b, x) : sumA;
    const auto step = hn::Mul(hn::Sub(sumB, sumA), weightB);
    const auto sum = hn::Add(sumA, hn::ShiftRight<8>(hn::Add(step, hn::Set(i32, 128))));
    const auto mean = hn::ShiftRight<6>(hn::Add(sum, hn::Set(i32, 32)));
    hn::StoreU(hn::DemoteTo(quarter, mean), quarter, out + x / kShrink);
  }
  shrinkFrom(x / kShrink, a, b, weight, out, count);
}

// Columns that are mixed at a time before they are enlarged.
constexpr int kBlock = 256;

void enlargeRow(const std::uint8_t* HWY_RESTRICT upper, const std::uint8_t* HWY_RESTRICT lower,
                int lowerWeight, int count, std::uint8_t* HWY_RESTRICT out, int outCount) {
  const hn::ScalableTag<std::uint16_t> d16;
  const hn::Rebind<std::uint8_t, decltype(d16)> d8;
  const hn::RebindToSigned<decltype(d16)> i16;
  const int lanes = static_cast<int>(hn::Lanes(d16));
  const auto weightLower = hn::Set(d16, static_cast<std::uint16_t>(lowerWeight));
  const auto weightUpper = hn::Set(d16, static_cast<std::uint16_t>(8 - lowerWeight));
  const auto columnAt = [&](int i) {
    i = std::clamp(i, 0, count - 1);
    return static_cast<std::uint16_t>(upper[i] * (8 - lowerWeight) + lower[i] * lowerWeight);
  };
  const auto between = [&](auto own, auto other, int weight) HWY_ATTR {
    const auto sum = hn::Add(hn::Mul(own, hn::Set(d16, static_cast<std::uint16_t>(8 - weight))),
                             hn::Mul(other, hn::Set(d16, static_cast<std::uint16_t>(weight))));
    return hn::DemoteTo(d8,
                        hn::BitCast(i16, hn::ShiftRight<6>(hn::Add(sum, hn::Set(d16, std::uint16_t{32})))));
  };
  std::array<std::uint16_t, kBlock + 2> columns;
  const auto enlarge = [&](int begin, int size) HWY_ATTR {
    columns[0] = columnAt(begin - 1);
    for (int i = 0; i < size; i += lanes) {
      const auto high = hn::PromoteTo(d16, hn::LoadU(d8, upper + begin + i));
      const auto low = hn::PromoteTo(d16, hn::LoadU(d8, lower + begin + i));
      hn::StoreU(hn::Add(hn::Mul(high, weightUpper), hn::Mul(low, weightLower)), d16, columns.data() + 1 + i);
    }
    columns[static_cast<std::size_t>(size) + 1] = columnAt(begin + size);
    for (int i = 0; i < size; i += lanes) {
      const auto before = hn::LoadU(d16, columns.data() + i);
      const auto own = hn::LoadU(d16, columns.data() + i + 1);
      const auto after = hn::LoadU(d16, columns.data() + i + 2);
      hn::StoreInterleaved4(between(own, before, kOuterWeight), between(own, before, kInnerWeight),
                            between(own, after, kInnerWeight), between(own, after, kOuterWeight), d8,
                            out + static_cast<std::ptrdiff_t>(kShrink) * (begin + i));
    }
  };
  const int fours = std::min(count, outCount / kShrink);
  if (fours < lanes) {
    enlargeFrom(0, upper, lower, lowerWeight, count, out, outCount);
    return;
  }
  const int whole = fours / lanes * lanes;
  for (int begin = 0; begin < whole; begin += kBlock)
    enlarge(begin, std::min(kBlock, whole - begin));
  if (whole < fours)
    enlarge(fours - lanes, lanes);
  enlargeFrom(fours * kShrink, upper, lower, lowerWeight, count, out, outCount);
}

void boxRow(const std::uint8_t* HWY_RESTRICT row, int radius256, std::uint32_t* HWY_RESTRICT sums,
            std::uint8_t* HWY_RESTRICT out, int count) {
  const hn::ScalableTag<float> df;
  const hn::RebindToSigned<decltype(df)> d32;
  const hn::RebindToUnsigned<decltype(df)> u32;
  const hn::Rebind<std::uint8_t, decltype(df)> d8;
  const int lanes = static_cast<int>(hn::Lanes(df));
  const Box box(radius256);
  sumUp(row, sums, count + box.last());
  const auto scale = hn::Set(df, box.scale);
  const auto fraction = hn::Set(d32, box.fraction);
  int x = 0;
  for (; x + lanes <= count; x += lanes) {
    const auto inner =
        hn::BitCast(d32, hn::Sub(hn::LoadU(u32, sums + x + box.last()), hn::LoadU(u32, sums + x + 1)));
    const auto outer = hn::Add(hn::PromoteTo(d32, hn::LoadU(d8, row + x)),
                               hn::PromoteTo(d32, hn::LoadU(d8, row + x + box.last())));
    const auto sum = hn::Add(hn::ShiftLeft<8>(inner), hn::Mul(outer, fraction));
    hn::StoreU(hn::DemoteTo(d8, hn::NearestInt(hn::Mul(hn::ConvertTo(df, sum), scale))), d8, out + x);
  }
  boxFrom(x, box, row, sums, out, count);
}

#endif

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(mixShrunkRow);
HWY_EXPORT(enlargeRow);
HWY_EXPORT(softenRow);
HWY_EXPORT(averageOfThreeRow);
HWY_EXPORT(averageTapsRow);
HWY_EXPORT(boxRow);
HWY_EXPORT(addRow);
HWY_EXPORT(binomialColumns);
HWY_EXPORT(sharpenRow);

void mixShrunkRow(const std::array<const std::uint8_t*, kShrink>& a,
                  const std::array<const std::uint8_t*, kShrink>& b, int weight, std::uint8_t* out,
                  int count) {
  HWY_DYNAMIC_DISPATCH(mixShrunkRow)(a, b, weight, out, count);
}

void enlargeRow(const std::uint8_t* upper, const std::uint8_t* lower, int lowerWeight, int count,
                std::uint8_t* out, int outCount) {
  HWY_DYNAMIC_DISPATCH(enlargeRow)(upper, lower, lowerWeight, count, out, outCount);
}

void softenRow(const std::uint8_t* a, const std::uint8_t* b, int weight, const std::uint8_t* soft,
               const std::uint8_t* mask, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(softenRow)(a, b, weight, soft, mask, out, count);
}

void averageOfThreeRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* c, std::uint8_t* out,
                       int count) {
  HWY_DYNAMIC_DISPATCH(averageOfThreeRow)(a, b, c, out, count);
}

void averageTapsRow(const std::array<RowTap, kTapCount>& taps, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(averageTapsRow)(taps, out, count);
}

void boxRow(const std::uint8_t* row, int radius256, std::uint32_t* sums, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(boxRow)(row, radius256, sums, out, count);
}

void addRow(const std::uint8_t* row, std::uint16_t* sums, int count) {
  HWY_DYNAMIC_DISPATCH(addRow)(row, sums, count);
}

void binomialColumns(const std::array<const std::uint8_t*, 5>& rows, std::uint16_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(binomialColumns)(rows, out, count);
}

void sharpenRow(const std::uint8_t* row, const std::uint16_t* columns, int spacing, int gain256, int low,
                int high, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(sharpenRow)(row, columns, spacing, gain256, low, high, out, count);
}

}  // namespace korvia
#endif

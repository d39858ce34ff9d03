#include "AreaKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/AreaKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

// The mean is sum * (2^22 / total) in 16 bits, of which the lowest six are the fraction.
constexpr int kScaleBits = 22;
constexpr int kPointBits = kScaleBits - 16;

inline std::uint16_t scaleFor(const std::uint16_t* weights, int rowCount) {
  int total = 0;
  for (int i = 0; i < rowCount; ++i)
    total += weights[i];
  return static_cast<std::uint16_t>(((1 << kScaleBits) + total / 2) / total);
}

inline void averageSamples(const std::uint8_t* const* rows, const std::uint16_t* weights, int rowCount,
                           std::uint32_t scale, std::uint8_t* out, int begin, int end) {
  for (int x = begin; x < end; ++x) {
    std::uint32_t sum = 0;
    for (int i = 0; i < rowCount; ++i)
      sum += std::uint32_t{rows[i][x]} * weights[i];
    out[x] = static_cast<std::uint8_t>((((sum * scale) >> 16) + (1 << (kPointBits - 1))) >> kPointBits);
  }
}

inline void halveSamples(const std::uint8_t* row, int count, int round, std::uint8_t* out, int begin) {
  const int pairs = count / 2;
  for (int i = begin; i < pairs; ++i)
    out[i] = static_cast<std::uint8_t>((row[2 * i] + row[2 * i + 1] + round) >> 1);
  if (count % 2)
    out[pairs] = row[count - 1];
}

#if HWY_TARGET == HWY_SCALAR

void averageRows(const std::uint8_t* const* rows, const std::uint16_t* weights, int rowCount,
                 std::uint8_t* out, int count) {
  averageSamples(rows, weights, rowCount, scaleFor(weights, rowCount), out, 0, count);
}

void halveRow(const std::uint8_t* row, int count, int round, std::uint8_t* out) {
  halveSamples(row, count, round, out, 0);
}

void shrinkRow(const std::uint8_t* row, const ShrinkGroup* groups, int groupCount, std::uint8_t* out) {
  for (const ShrinkGroup* group = groups; group < groups + groupCount; ++group)
    for (int half = 0; half < ShrinkGroup::kHalves; ++half)
      for (int lane = 0; lane < group->count[half]; ++lane) {
        const int place = half * ShrinkGroup::kLanes + lane;
        const std::uint8_t* taps =
            row + group->offset[half] + (group->index[place] ^ ShrinkGroup::kZeroAbove);
        const int first = group->firstWeight[place];
        const int last = group->lastWeight[place];
        *out++ = static_cast<std::uint8_t>(
            (taps[0] * first + taps[1] * (256 - first - last) + taps[2] * last + 128) >> 8);
      }
}

#else

namespace hn = hwy::HWY_NAMESPACE;

void averageRows(const std::uint8_t* const* rows, const std::uint16_t* weights, int rowCount,
                 std::uint8_t* out, int count) {
  const hn::ScalableTag<std::uint8_t> d8;
  const hn::RepartitionToWide<decltype(d8)> d16;
  const int lanes = static_cast<int>(hn::Lanes(d8));
  const std::uint16_t scale = scaleFor(weights, rowCount);
  const auto low = hn::Set(d16, std::uint16_t{255});
  const auto vectorScale = hn::Set(d16, scale);
  const auto round = hn::Set(d16, std::uint16_t{1 << (kPointBits - 1)});
  const auto mean = [&](auto sum) HWY_ATTR {
    return hn::ShiftRight<kPointBits>(hn::Add(hn::MulHigh(sum, vectorScale), round));
  };
  int x = 0;
  for (; x + lanes <= count; x += lanes) {
    auto even = hn::Zero(d16);
    auto odd = hn::Zero(d16);
    for (int i = 0; i < rowCount; ++i) {
      const auto pairs = hn::BitCast(d16, hn::LoadU(d8, rows[i] + x));
      const auto weight = hn::Set(d16, weights[i]);
      even = hn::Add(even, hn::Mul(hn::And(pairs, low), weight));
      odd = hn::Add(odd, hn::Mul(hn::ShiftRight<8>(pairs), weight));
    }
    hn::StoreU(hn::BitCast(d8, hn::Or(mean(even), hn::ShiftLeft<8>(mean(odd)))), d8, out + x);
  }
  averageSamples(rows, weights, rowCount, scale, out, x, count);
}

void halveRow(const std::uint8_t* row, int count, int round, std::uint8_t* out) {
  const hn::ScalableTag<std::uint8_t> d8;
  const hn::RepartitionToWide<decltype(d8)> d16;
  const hn::RebindToSigned<decltype(d16)> i16;
  const hn::Half<decltype(d8)> half;
  const int pairs = static_cast<int>(hn::Lanes(d16));
  const auto low = hn::Set(d16, std::uint16_t{255});
  const auto half1 = hn::Set(d16, static_cast<std::uint16_t>(round));
  int i = 0;
  for (; 2 * (i + pairs) <= count; i += pairs) {
    const auto both = hn::BitCast(d16, hn::LoadU(d8, row + 2 * i));
    const auto sum = hn::Add(hn::Add(hn::And(both, low), hn::ShiftRight<8>(both)), half1);
    hn::StoreU(hn::DemoteTo(half, hn::BitCast(i16, hn::ShiftRight<1>(sum))), half, out + i);
  }
  halveSamples(row, count, round, out, i);
}

#if HWY_TARGET & (HWY_AVX2 | HWY_AVX3 | HWY_AVX3_DL)

constexpr int kHalvesAtOnce = 2;

inline auto windows(const std::uint8_t* row, const std::int32_t* offsets) {
  const hn::FixedTag<std::uint8_t, ShrinkGroup::kWindow> window;
  const hn::FixedTag<std::uint8_t, 2 * ShrinkGroup::kWindow> both;
  return hn::Combine(both, hn::LoadU(window, row + offsets[1]), hn::LoadU(window, row + offsets[0]));
}

template <typename V>
std::uint8_t* storeHalves(V samples, const std::int32_t* counts, std::uint8_t* out) {
  constexpr int kLanes = ShrinkGroup::kLanes;
  const hn::FixedTag<std::uint8_t, kLanes> half;
  const hn::FixedTag<std::uint8_t, 2 * kLanes> both;
  if (counts[0] == kLanes) {
    hn::StoreU(samples, both, out);
    return out + kLanes + counts[1];
  }
  hn::StoreU(hn::LowerHalf(half, samples), half, out);
  out += counts[0];
  hn::StoreU(hn::UpperHalf(half, samples), half, out);
  return out + counts[1];
}

#else

constexpr int kHalvesAtOnce = 1;

inline auto windows(const std::uint8_t* row, const std::int32_t* offsets) {
  return hn::LoadU(hn::FixedTag<std::uint8_t, ShrinkGroup::kWindow>(), row + offsets[0]);
}

template <typename V>
std::uint8_t* storeHalves(V samples, const std::int32_t* counts, std::uint8_t* out) {
  hn::StoreU(samples, hn::FixedTag<std::uint8_t, ShrinkGroup::kLanes>(), out);
  return out + counts[0];
}

#endif

void shrinkRow(const std::uint8_t* row, const ShrinkGroup* groups, int groupCount, std::uint8_t* out) {
  constexpr int kLanes = kHalvesAtOnce * ShrinkGroup::kLanes;
  const hn::FixedTag<std::uint8_t, 2 * kLanes> d8;
  const hn::FixedTag<std::uint8_t, kLanes> lanes8;
  const hn::FixedTag<std::uint16_t, kLanes> d16;
  const hn::RebindToSigned<decltype(d16)> i16;
  const auto one = hn::Set(d16, std::uint16_t{1});
  const auto whole = hn::Set(d16, std::uint16_t{256});
  const auto round = hn::Set(d16, std::uint16_t{128});
  for (const ShrinkGroup* group = groups; group < groups + groupCount; ++group)
    for (int half = 0; half < ShrinkGroup::kHalves; half += kHalvesAtOnce) {
      const int place = half * ShrinkGroup::kLanes;
      const auto window = windows(row, group->offset + half);
      // The zero byte above each index widens the samples to 16 bits.
      const auto tap = [&](auto index) HWY_ATTR {
        return hn::BitCast(d16, hn::TableLookupBytesOr0(window, hn::BitCast(d8, index)));
      };
      const auto index = hn::Load(d16, group->index + place);
      const auto next = hn::Add(index, one);
      const auto firstWeight = hn::Load(d16, group->firstWeight + place);
      const auto lastWeight = hn::Load(d16, group->lastWeight + place);
      const auto middleWeight = hn::Sub(hn::Sub(whole, firstWeight), lastWeight);
      const auto sum = hn::Add(hn::Add(hn::Mul(tap(index), firstWeight), hn::Mul(tap(next), middleWeight)),
                               hn::Add(hn::Mul(tap(hn::Add(next, one)), lastWeight), round));
      const auto samples = hn::DemoteTo(lanes8, hn::BitCast(i16, hn::ShiftRight<8>(sum)));
      out = storeHalves(samples, group->count + half, out);
    }
}

#endif

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(averageRows);
HWY_EXPORT(halveRow);
HWY_EXPORT(shrinkRow);

void averageRows(const std::uint8_t* const* rows, const std::uint16_t* weights, int rowCount,
                 std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(averageRows)(rows, weights, rowCount, out, count);
}

void halveRow(const std::uint8_t* row, int count, int round, std::uint8_t* out) {
  HWY_DYNAMIC_DISPATCH(halveRow)(row, count, round, out);
}

void shrinkRow(const std::uint8_t* row, const ShrinkGroup* groups, int groupCount, std::uint8_t* out) {
  HWY_DYNAMIC_DISPATCH(shrinkRow)(row, groups, groupCount, out);
}

}  // namespace korvia
#endif

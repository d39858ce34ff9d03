#include "MaskKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/MaskKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

/// Added before a truncating conversion it rounds.
constexpr float kRounding = 0.5F;

// Single samples: the last columns of a row, and all of them on a machine without vectors.
inline std::uint8_t masked(float value) {
  return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 255.0F) + kRounding);
}

inline std::uint8_t disc(const DiscRow& row, int column) {
  const float x = row.first + static_cast<float>(column) * row.step;
  return masked(row.level - row.slope * std::sqrt(x * x + row.ySquare));
}

inline std::uint8_t blended(int a, int b, int weight) {
  return static_cast<std::uint8_t>((a * (256 - weight) + b * weight + 128) >> 8);
}

inline std::uint8_t kindOf(const std::uint8_t* mask, int count) {
  const auto [least, most] = std::minmax_element(mask, mask + count);
  return *least == *most && (*most == 0 || *most == 255) ? *most : 1;
}

#if HWY_TARGET == HWY_SCALAR

void slopedMaskRow(const float* level, const float* slope, float y, std::uint8_t* mask, int count) {
  for (int x = 0; x < count; ++x)
    mask[x] = masked(level[x] - y * slope[x]);
}

void discMaskRow(const DiscRow& row, std::uint8_t* mask, int count) {
  for (int x = 0; x < count; ++x)
    mask[x] = disc(row, x);
}

void spokeMaskRow(const SpokeRow& row, std::uint8_t* mask, int begin, int end) {
  for (int x = begin; x < end; ++x) {
    const float tangent = row.first + static_cast<float>(x) * row.step;
    mask[x] = masked(row.level + row.slope * (tangent - row.spoke) / (1 + tangent * row.spoke));
  }
}

void cappedMaskRow(const std::uint8_t* row, std::uint8_t most, std::uint8_t* mask, int count) {
  for (int x = 0; x < count; ++x)
    mask[x] = std::min(row[x], most);
}

void blendedMaskRow(const std::uint8_t* a, const std::uint8_t* b, int weight, std::uint8_t* mask, int count) {
  for (int x = 0; x < count; ++x)
    mask[x] = blended(a[x], b[x], weight);
}

void maskBlockKinds(const std::uint8_t* mask, int count, std::uint8_t* kinds) {
  for (int x = 0; x < count; x += kMaskBlock)
    *kinds++ = kindOf(mask + x, std::min(kMaskBlock, count - x));
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::ScalableTag<float>;

template <typename V>
HWY_INLINE void storeMasked(V value, std::uint8_t* mask) {
  const Floats f32;
  const hn::RebindToSigned<Floats> i32;
  const hn::Rebind<std::uint8_t, Floats> d8;
  // Limited before the conversion, which is undefined for values that do not fit an integer.
  const auto held = hn::Min(hn::Max(value, hn::Zero(f32)), hn::Set(f32, 255.0F));
  hn::StoreU(hn::DemoteTo(d8, hn::ConvertTo(i32, hn::Add(held, hn::Set(f32, kRounding)))), d8, mask);
}

void slopedMaskRow(const float* HWY_RESTRICT level, const float* HWY_RESTRICT slope, float y,
                   std::uint8_t* HWY_RESTRICT mask, int count) {
  const Floats f32;
  const int lanes = static_cast<int>(hn::Lanes(f32));
  const auto row = hn::Set(f32, y);
  int x = 0;
  for (; x + lanes <= count; x += lanes)
    storeMasked(hn::NegMulAdd(row, hn::LoadU(f32, slope + x), hn::LoadU(f32, level + x)), mask + x);
  for (; x < count; ++x)
    mask[x] = masked(level[x] - y * slope[x]);
}

void discMaskRow(const DiscRow& row, std::uint8_t* HWY_RESTRICT mask, int count) {
  const Floats f32;
  const int lanes = static_cast<int>(hn::Lanes(f32));
  const auto step = hn::Set(f32, row.step);
  const auto ySquare = hn::Set(f32, row.ySquare);
  const auto level = hn::Set(f32, row.level);
  const auto slope = hn::Set(f32, row.slope);
  int x = 0;
  for (; x + lanes <= count; x += lanes) {
    const auto dx = hn::MulAdd(hn::Iota(f32, static_cast<float>(x)), step, hn::Set(f32, row.first));
    storeMasked(hn::NegMulAdd(slope, hn::Sqrt(hn::MulAdd(dx, dx, ySquare)), level), mask + x);
  }
  for (; x < count; ++x)
    mask[x] = disc(row, x);
}

void spokeMaskRow(const SpokeRow& row, std::uint8_t* HWY_RESTRICT mask, int begin, int end) {
  const Floats f32;
  const int lanes = static_cast<int>(hn::Lanes(f32));
  const auto step = hn::Set(f32, row.step);
  const auto spokes = hn::Set(f32, row.spoke);
  const auto level = hn::Set(f32, row.level);
  const auto slope = hn::Set(f32, row.slope);
  const auto one = hn::Set(f32, 1.0F);
  for (int x = begin; x < end; x += lanes) {
    const auto tangent = hn::MulAdd(hn::Iota(f32, static_cast<float>(x)), step, hn::Set(f32, row.first));
    const auto difference = hn::Div(hn::Sub(tangent, spokes), hn::MulAdd(tangent, spokes, one));
    storeMasked(hn::MulAdd(slope, difference, level), mask + x);
  }
}

void cappedMaskRow(const std::uint8_t* HWY_RESTRICT row, std::uint8_t most, std::uint8_t* HWY_RESTRICT mask,
                   int count) {
  const hn::ScalableTag<std::uint8_t> d8;
  const int lanes = static_cast<int>(hn::Lanes(d8));
  const auto cap = hn::Set(d8, most);
  int x = 0;
  for (; x + lanes <= count; x += lanes)
    hn::StoreU(hn::Min(hn::LoadU(d8, row + x), cap), d8, mask + x);
  for (; x < count; ++x)
    mask[x] = std::min(row[x], most);
}

void blendedMaskRow(const std::uint8_t* HWY_RESTRICT a, const std::uint8_t* HWY_RESTRICT b, int weight,
                    std::uint8_t* HWY_RESTRICT mask, int count) {
  const hn::ScalableTag<std::uint16_t> d16;
  const hn::Rebind<std::uint8_t, decltype(d16)> d8;
  const hn::RebindToSigned<decltype(d16)> i16;
  const int lanes = static_cast<int>(hn::Lanes(d16));
  const auto weightA = hn::Set(d16, static_cast<std::uint16_t>(256 - weight));
  const auto weightB = hn::Set(d16, static_cast<std::uint16_t>(weight));
  const auto round = hn::Set(d16, std::uint16_t{128});
  int x = 0;
  for (; x + lanes <= count; x += lanes) {
    const auto va = hn::PromoteTo(d16, hn::LoadU(d8, a + x));
    const auto vb = hn::PromoteTo(d16, hn::LoadU(d8, b + x));
    const auto sum = hn::Add(hn::Add(hn::Mul(va, weightA), hn::Mul(vb, weightB)), round);
    hn::StoreU(hn::DemoteTo(d8, hn::BitCast(i16, hn::ShiftRight<8>(sum))), d8, mask + x);
  }
  for (; x < count; ++x)
    mask[x] = blended(a[x], b[x], weight);
}

void maskBlockKinds(const std::uint8_t* mask, int count, std::uint8_t* kinds) {
  const hn::CappedTag<std::uint8_t, kMaskBlock> d8;
  const int lanes = static_cast<int>(hn::Lanes(d8));
  int x = 0;
  for (; x + kMaskBlock <= count; x += kMaskBlock) {
    auto all = hn::LoadU(d8, mask + x);
    auto any = all;
    for (int i = lanes; i < kMaskBlock; i += lanes) {
      const auto values = hn::LoadU(d8, mask + x + i);
      all = hn::And(all, values);
      any = hn::Or(any, values);
    }
    const bool none = hn::AllTrue(d8, hn::Eq(any, hn::Zero(d8)));
    const bool full = hn::AllTrue(d8, hn::Eq(all, hn::Set(d8, std::uint8_t{255})));
    *kinds++ = none ? 0 : full ? 255 : 1;
  }
  if (x < count)
    *kinds = kindOf(mask + x, count - x);
}

#endif

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(slopedMaskRow);
HWY_EXPORT(discMaskRow);
HWY_EXPORT(spokeMaskRow);
HWY_EXPORT(cappedMaskRow);
HWY_EXPORT(blendedMaskRow);
HWY_EXPORT(maskBlockKinds);

void slopedMaskRow(const float* level, const float* slope, float y, std::uint8_t* mask, int count) {
  HWY_DYNAMIC_DISPATCH(slopedMaskRow)(level, slope, y, mask, count);
}

void discMaskRow(const DiscRow& disc, std::uint8_t* mask, int count) {
  HWY_DYNAMIC_DISPATCH(discMaskRow)(disc, mask, count);
}

void spokeMaskRow(const SpokeRow& spoke, std::uint8_t* mask, int begin, int end) {
  HWY_DYNAMIC_DISPATCH(spokeMaskRow)(spoke, mask, begin, end);
}

void cappedMaskRow(const std::uint8_t* row, std::uint8_t most, std::uint8_t* mask, int count) {
  HWY_DYNAMIC_DISPATCH(cappedMaskRow)(row, most, mask, count);
}

void blendedMaskRow(const std::uint8_t* a, const std::uint8_t* b, int weight, std::uint8_t* mask, int count) {
  HWY_DYNAMIC_DISPATCH(blendedMaskRow)(a, b, weight, mask, count);
}

void maskBlockKinds(const std::uint8_t* mask, int count, std::uint8_t* kinds) {
  HWY_DYNAMIC_DISPATCH(maskBlockKinds)(mask, count, kinds);
}

}  // namespace korvia
#endif

#include "LitMix.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/LitMix.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

inline void mixLitSamples(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask,
                          const std::int8_t* light, std::uint8_t* out, int begin, int end) {
  for (int x = begin; x < end; ++x) {
    const int sum = a[x] * (255 - mask[x]) + b[x] * mask[x] + 128;
    const int mixed = (sum + (sum >> 8)) >> 8;
    out[x] = static_cast<std::uint8_t>(std::clamp(mixed + (((mixed - 16) * light[x] + 64) >> 7), 0, 255));
  }
}

#if HWY_TARGET == HWY_SCALAR

void mixLitRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask,
               const std::int8_t* light, std::uint8_t* out, int count) {
  mixLitSamples(a, b, mask, light, out, 0, count);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

void mixLitRow(const std::uint8_t* HWY_RESTRICT a, const std::uint8_t* HWY_RESTRICT b,
               const std::uint8_t* HWY_RESTRICT mask, const std::int8_t* HWY_RESTRICT light,
               std::uint8_t* HWY_RESTRICT out, int count) {
  const hn::ScalableTag<std::uint8_t> d8;
  const hn::RepartitionToWide<decltype(d8)> d16;
  const hn::RebindToSigned<decltype(d16)> i16;
  const hn::Half<decltype(d8)> half;
  const hn::RebindToSigned<decltype(half)> half8;
  const int lanes = static_cast<int>(hn::Lanes(d8));
  const int halfLanes = lanes / 2;
  const auto full = hn::Set(d16, std::uint16_t{255});
  const auto round = hn::Set(d16, std::uint16_t{128});
  const auto black = hn::Set(i16, std::int16_t{16});
  const auto lightRound = hn::Set(i16, std::int16_t{64});
  const auto lit = [&](int x) HWY_ATTR {
    const auto va = hn::PromoteTo(d16, hn::LoadU(half, a + x));
    const auto vb = hn::PromoteTo(d16, hn::LoadU(half, b + x));
    const auto m = hn::PromoteTo(d16, hn::LoadU(half, mask + x));
    const auto sum = hn::Add(hn::Add(hn::Mul(va, hn::Sub(full, m)), hn::Mul(vb, m)), round);
    const auto mixed = hn::BitCast(i16, hn::ShiftRight<8>(hn::Add(sum, hn::ShiftRight<8>(sum))));
    const auto gain = hn::PromoteTo(i16, hn::LoadU(half8, light + x));
    const auto added = hn::ShiftRight<7>(hn::Add(hn::Mul(hn::Sub(mixed, black), gain), lightRound));
    return hn::DemoteTo(half, hn::Add(mixed, added));
  };
  const bool aligned = reinterpret_cast<std::uintptr_t>(out) % static_cast<std::uintptr_t>(lanes) == 0;
  int x = 0;
  for (; x + lanes <= count; x += lanes) {
    const auto low = lit(x);
    const auto row = hn::Combine(d8, lit(x + halfLanes), low);
    if (aligned)
      hn::Stream(row, d8, out + x);
    else
      hn::StoreU(row, d8, out + x);
  }
  mixLitSamples(a, b, mask, light, out, x, count);
}

#endif

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(mixLitRow);

void mixLitRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask,
               const std::int8_t* light, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(mixLitRow)(a, b, mask, light, out, count);
}

}  // namespace korvia
#endif

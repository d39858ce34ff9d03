#include "LitMix.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/LitMix.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>

#include "engine/kernels/StoreRow-inl.h"

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
  const hn::ScalableTag<std::uint16_t> d16;
  const hn::RebindToSigned<decltype(d16)> i16;
  const hn::Rebind<std::uint8_t, decltype(d16)> d8;
  const hn::RebindToSigned<decltype(d8)> i8;
  const auto full = hn::Set(d16, std::uint16_t{255});
  const auto round = hn::Set(d16, std::uint16_t{128});
  const auto black = hn::Set(i16, std::int16_t{16});
  const auto lightRound = hn::Set(i16, std::int16_t{64});
  const int x = storeRow(out, count, [&](int at) HWY_ATTR {
    const auto va = hn::PromoteTo(d16, hn::LoadU(d8, a + at));
    const auto vb = hn::PromoteTo(d16, hn::LoadU(d8, b + at));
    const auto m = hn::PromoteTo(d16, hn::LoadU(d8, mask + at));
    const auto sum = hn::Add(hn::Add(hn::Mul(va, hn::Sub(full, m)), hn::Mul(vb, m)), round);
    const auto mixed = hn::BitCast(i16, hn::ShiftRight<8>(hn::Add(sum, hn::ShiftRight<8>(sum))));
    const auto gain = hn::PromoteTo(i16, hn::LoadU(i8, light + at));
    const auto added = hn::ShiftRight<7>(hn::Add(hn::Mul(hn::Sub(mixed, black), gain), lightRound));
    return hn::DemoteTo(d8, hn::Add(mixed, added));
  });
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

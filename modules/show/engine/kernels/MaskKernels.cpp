#include "MaskKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/MaskKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

void slopedMaskRow(const float* HWY_RESTRICT level, const float* HWY_RESTRICT slope, float y,
                   std::uint8_t* HWY_RESTRICT mask, int count) {
  int x = 0;
#if HWY_TARGET != HWY_SCALAR
  const hn::ScalableTag<float> f32;
  const hn::RebindToSigned<decltype(f32)> i32;
  const hn::Rebind<std::uint8_t, decltype(f32)> d8;
  const int lanes = static_cast<int>(hn::Lanes(f32));
  const auto row = hn::Set(f32, y);
  const auto full = hn::Set(f32, 255.0F);
  for (; x + lanes <= count; x += lanes) {
    const auto value = hn::NegMulAdd(row, hn::LoadU(f32, slope + x), hn::LoadU(f32, level + x));
    // Held within bounds before it is made an integer, which an endless number cannot be.
    const auto held = hn::Min(hn::Max(value, hn::Zero(f32)), full);
    hn::StoreU(hn::DemoteTo(d8, hn::ConvertTo(i32, hn::Add(held, hn::Set(f32, 0.5F)))), d8, mask + x);
  }
#endif
  for (; x < count; ++x)
    mask[x] = static_cast<std::uint8_t>(std::clamp(level[x] - y * slope[x], 0.0F, 255.0F) + 0.5F);
}

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(slopedMaskRow);

void slopedMaskRow(const float* level, const float* slope, float y, std::uint8_t* mask, int count) {
  HWY_DYNAMIC_DISPATCH(slopedMaskRow)(level, slope, y, mask, count);
}

}  // namespace korvia
#endif

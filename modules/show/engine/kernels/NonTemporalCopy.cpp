#include "NonTemporalCopy.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/NonTemporalCopy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

void copyRowNonTemporal(const std::uint8_t* HWY_RESTRICT from, std::uint8_t* HWY_RESTRICT out, int count) {
  const hn::ScalableTag<std::uint8_t> d8;
  const int lanes = static_cast<int>(hn::Lanes(d8));
  int x = 0;
  if (reinterpret_cast<std::uintptr_t>(out) % static_cast<std::uintptr_t>(lanes) == 0)
    for (; x + lanes <= count; x += lanes)
      hn::Stream(hn::LoadU(d8, from + x), d8, out + x);
  std::memcpy(out + x, from + x, static_cast<std::size_t>(count - x));
}

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(copyRowNonTemporal);

void copyRowNonTemporal(const std::uint8_t* from, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(copyRowNonTemporal)(from, out, count);
}

}  // namespace korvia
#endif

// The loop of kernels that make a row of samples, for every instruction set. Pure, any thread.
#if defined(KORVIA_STORE_ROW_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef KORVIA_STORE_ROW_INL
#undef KORVIA_STORE_ROW_INL
#else
#define KORVIA_STORE_ROW_INL
#endif

#include <hwy/highway.h>

#include <cstdint>

// The scalar kernels have no halves of a register; they make their rows sample by sample.
#if HWY_TARGET != HWY_SCALAR

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

/// Writes `samples(x)`, half a register of samples from `x` on, for as many whole registers as `count`
/// samples hold, and returns how many samples that were. A row that begins on a register's boundary is
/// written past the cache: a frame is larger than what the cache should give up.
template <typename Samples>
HWY_INLINE int storeRow(std::uint8_t* HWY_RESTRICT out, int count, const Samples& samples) {
  namespace hn = hwy::HWY_NAMESPACE;
  const hn::ScalableTag<std::uint8_t> d8;
  const int lanes = static_cast<int>(hn::Lanes(d8));
  const bool aligned = reinterpret_cast<std::uintptr_t>(out) % static_cast<std::uintptr_t>(lanes) == 0;
  int x = 0;
  for (; x + lanes <= count; x += lanes) {
    const auto low = samples(x);
    const auto row = hn::Combine(d8, samples(x + lanes / 2), low);
    if (aligned)
      hn::Stream(row, d8, out + x);
    else
      hn::StoreU(row, d8, out + x);
  }
  return x;
}

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

#endif

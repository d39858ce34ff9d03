// What the kernels over rows of 8-bit samples share, compiled for every instruction set: arithmetic in 16
// bits and the loops over a row. A kernel is a struct that has its formula twice: one(x) for the sample x,
// many(x) for as many samples from x on as a register of 16-bit lanes holds. Pure functions, any thread.
#if defined(KORVIA_ROW_LOOP_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef KORVIA_ROW_LOOP_INL
#undef KORVIA_ROW_LOOP_INL
#else
#define KORVIA_ROW_LOOP_INL
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

using Samples = hwy::HWY_NAMESPACE::ScalableTag<std::uint16_t>;
using Signed = hwy::HWY_NAMESPACE::RebindToSigned<Samples>;
using Bytes = hwy::HWY_NAMESPACE::Rebind<std::uint8_t, Samples>;
using Vec = hwy::HWY_NAMESPACE::Vec<Samples>;

constexpr Samples kSamples;
constexpr Signed kSigned;
constexpr Bytes kBytes;

inline std::uint8_t byte(int value) {
  return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

HWY_INLINE Vec load(const std::uint8_t* samples) {
  namespace hn = hwy::HWY_NAMESPACE;
  return hn::PromoteTo(kSamples, hn::LoadU(kBytes, samples));
}

HWY_INLINE Vec constant(int value) {
  return hwy::HWY_NAMESPACE::Set(kSamples, static_cast<std::uint16_t>(value));
}

/// Reads the values as signed numbers and limits them to 0 to 255.
HWY_INLINE hwy::HWY_NAMESPACE::Vec<Bytes> bytesOf(Vec values) {
  namespace hn = hwy::HWY_NAMESPACE;
  return hn::DemoteTo(kBytes, hn::BitCast(kSigned, values));
}

/// sum / 255, rounded; exact for sums of up to 255 * 255.
inline int dividedBy255(int sum) {
  sum += 128;
  return (sum + (sum >> 8)) >> 8;
}
HWY_INLINE Vec dividedBy255(Vec sum) {
  namespace hn = hwy::HWY_NAMESPACE;
  sum = hn::Add(sum, constant(128));
  return hn::ShiftRight<8>(hn::Add(sum, hn::ShiftRight<8>(sum)));
}

/// From a at weight 0 to b at weight 255.
inline int mixedBy255(int a, int b, int weight) {
  return dividedBy255(a * (255 - weight) + b * weight);
}
HWY_INLINE Vec mixedBy255(Vec a, Vec b, Vec weight) {
  namespace hn = hwy::HWY_NAMESPACE;
  return dividedBy255(hn::Add(hn::Mul(a, hn::Sub(constant(255), weight)), hn::Mul(b, weight)));
}

/// From a at weight 0 to b at weight 256.
inline int mixedBy256(int a, int b, int weight) {
  return (a * (256 - weight) + b * weight + 128) >> 8;
}
HWY_INLINE Vec mixedBy256(Vec a, Vec b, int weight) {
  namespace hn = hwy::HWY_NAMESPACE;
  const Vec sum = hn::Add(hn::Mul(a, constant(256 - weight)), hn::Mul(b, constant(weight)));
  return hn::ShiftRight<8>(hn::Add(sum, constant(128)));
}

/// Runs a kernel over samples `begin` to before `count`.
template <typename Kernel>
HWY_INLINE void run(const Kernel& kernel, std::uint8_t* out, int count, int begin = 0) {
  namespace hn = hwy::HWY_NAMESPACE;
  const int lanes = static_cast<int>(hn::Lanes(kSamples));
  int x = begin;
  for (; x + lanes <= count; x += lanes)
    hn::StoreU(bytesOf(kernel.many(x)), kBytes, out + x);
  for (; x < count; ++x)
    out[x] = byte(kernel.one(x));
}

/// Runs a kernel whose results have 16 bits.
template <typename Kernel>
HWY_INLINE void run(const Kernel& kernel, std::uint16_t* out, int count) {
  namespace hn = hwy::HWY_NAMESPACE;
  const int lanes = static_cast<int>(hn::Lanes(kSamples));
  int x = 0;
  for (; x + lanes <= count; x += lanes)
    hn::StoreU(kernel.many(x), kSamples, out + x);
  for (; x < count; ++x)
    out[x] = static_cast<std::uint16_t>(kernel.one(x));
}

/// Runs a kernel over a row of a frame. Where the row is aligned to a register its stores are non-temporal: a
/// frame is larger than the part of the cache that it may evict.
template <typename Kernel>
HWY_INLINE void runNonTemporal(const Kernel& kernel, std::uint8_t* out, int count) {
  int x = 0;
// A scalar target has no registers to combine.
#if HWY_TARGET != HWY_SCALAR
  namespace hn = hwy::HWY_NAMESPACE;
  const hn::ScalableTag<std::uint8_t> whole;
  const int lanes = static_cast<int>(hn::Lanes(whole));
  if (reinterpret_cast<std::uintptr_t>(out) % static_cast<std::uintptr_t>(lanes) == 0)
    for (; x + lanes <= count; x += lanes) {
      const auto low = bytesOf(kernel.many(x));
      hn::Stream(hn::Combine(whole, bytesOf(kernel.many(x + lanes / 2)), low), whole, out + x);
    }
#endif
  run(kernel, out, count, x);
}

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

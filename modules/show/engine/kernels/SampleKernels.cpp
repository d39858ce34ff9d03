#include "SampleKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/SampleKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

inline std::uint8_t sampleAt(const PlaneView& plane, int x, int y) {
  x = std::clamp(x, 0, (plane.width - 1) << kSampleFractionBits);
  y = std::clamp(y, 0, (plane.height - 1) << kSampleFractionBits);
  const int column = x >> kSampleFractionBits;
  const int line = y >> kSampleFractionBits;
  const int right = std::min(column + 1, plane.width - 1);
  const std::uint8_t* upper = plane.row(line);
  const std::uint8_t* lower = plane.row(std::min(line + 1, plane.height - 1));
  const int weightX = x & (kSampleOne - 1);
  const int weightY = y & (kSampleOne - 1);
  const int top = upper[column] * kSampleOne + (upper[right] - upper[column]) * weightX;
  const int bottom = lower[column] * kSampleOne + (lower[right] - lower[column]) * weightX;
  return static_cast<std::uint8_t>((top * kSampleOne + (bottom - top) * weightY + (1 << 15)) >> 16);
}

void sampleScalar(const PlaneView& plane, const std::int32_t* x, const std::int32_t* y, std::uint8_t* out,
                  int count) {
  for (int i = 0; i < count; ++i)
    out[i] = sampleAt(plane, x[i], y[i]);
}

#if HWY_TARGET == HWY_SCALAR

void sampleRow(const PlaneView& plane, const std::int32_t* x, const std::int32_t* y, std::uint8_t* out,
               int count) {
  sampleScalar(plane, x, y, out, count);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// As many points as are looked up at a time: the vectors before and after must not wait for single stores.
constexpr int kBlock = 256;

inline std::uint32_t pairAt(const std::uint8_t* samples) {
  std::uint16_t pair = 0;
  std::memcpy(&pair, samples, sizeof pair);
  return pair;
}

void sampleRow(const PlaneView& plane, const std::int32_t* HWY_RESTRICT x, const std::int32_t* HWY_RESTRICT y,
               std::uint8_t* HWY_RESTRICT out, int count) {
  const hn::ScalableTag<std::int32_t> d32;
  const hn::Rebind<std::uint8_t, decltype(d32)> d8;
  const int lanes = static_cast<int>(hn::Lanes(d32));
  const auto zero = hn::Zero(d32);
  const auto byte = hn::Set(d32, 255);
  const auto endX = hn::Set(d32, (plane.width - 1) << kSampleFractionBits);
  const auto endY = hn::Set(d32, (plane.height - 1) << kSampleFractionBits);
  // The last sample is the right one of its pair, with all the weight, so that no pair leaves the plane.
  const auto lastColumn = hn::Set(d32, plane.width - 2);
  const auto lastLine = hn::Set(d32, plane.height - 2);
  const auto stride = hn::Set(d32, plane.stride);
  const auto round = hn::Set(d32, 1 << 15);

  HWY_ALIGN std::array<std::int32_t, kBlock> offsets;
  HWY_ALIGN std::array<std::int32_t, kBlock> weightsX;
  HWY_ALIGN std::array<std::int32_t, kBlock> weightsY;
  HWY_ALIGN std::array<std::int32_t, kBlock> squares;
  const int whole = plane.width > 1 && plane.height > 1 ? count / lanes * lanes : 0;
  for (int begin = 0; begin < whole; begin += kBlock) {
    const int size = std::min(kBlock, whole - begin);
    for (int i = 0; i < size; i += lanes) {
      const auto px = hn::Min(hn::Max(hn::LoadU(d32, x + begin + i), zero), endX);
      const auto py = hn::Min(hn::Max(hn::LoadU(d32, y + begin + i), zero), endY);
      const auto column = hn::Min(hn::ShiftRight<kSampleFractionBits>(px), lastColumn);
      const auto line = hn::Min(hn::ShiftRight<kSampleFractionBits>(py), lastLine);
      hn::Store(hn::Add(hn::Mul(line, stride), column), d32, offsets.data() + i);
      hn::Store(hn::Sub(px, hn::ShiftLeft<kSampleFractionBits>(column)), d32, weightsX.data() + i);
      hn::Store(hn::Sub(py, hn::ShiftLeft<kSampleFractionBits>(line)), d32, weightsY.data() + i);
    }
    for (int i = 0; i < size; ++i) {
      const std::uint8_t* corner = plane.data + offsets[static_cast<std::size_t>(i)];
      squares[static_cast<std::size_t>(i)] =
          static_cast<std::int32_t>(pairAt(corner) | pairAt(corner + plane.stride) << 16);
    }
    for (int i = 0; i < size; i += lanes) {
      const auto square = hn::Load(d32, squares.data() + i);
      const auto weightX = hn::Load(d32, weightsX.data() + i);
      const auto between = [&](auto left, auto right) HWY_ATTR {
        return hn::Add(hn::ShiftLeft<kSampleFractionBits>(left), hn::Mul(hn::Sub(right, left), weightX));
      };
      const auto top = between(hn::And(square, byte), hn::And(hn::ShiftRight<8>(square), byte));
      const auto bottom =
          between(hn::And(hn::ShiftRight<16>(square), byte), hn::And(hn::ShiftRight<24>(square), byte));
      const auto sum = hn::Add(hn::Add(hn::ShiftLeft<kSampleFractionBits>(top), round),
                               hn::Mul(hn::Sub(bottom, top), hn::Load(d32, weightsY.data() + i)));
      hn::StoreU(hn::DemoteTo(d8, hn::ShiftRight<16>(sum)), d8, out + begin + i);
    }
  }
  sampleScalar(plane, x + whole, y + whole, out + whole, count - whole);
}

#endif

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(sampleRow);

void sampleRow(const PlaneView& plane, const std::int32_t* x, const std::int32_t* y, std::uint8_t* out,
               int count) {
  HWY_DYNAMIC_DISPATCH(sampleRow)(plane, x, y, out, count);
}

}  // namespace korvia
#endif

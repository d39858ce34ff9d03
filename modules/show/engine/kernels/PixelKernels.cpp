#include "PixelKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/PixelKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "engine/kernels/RowLoop-inl.h"

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

namespace {

constexpr int kRampBits = 16;
constexpr int kWeightBits = 8;
constexpr int kOne = 1 << kWeightBits;

struct Shifted {
  const std::uint8_t* upper;
  const std::uint8_t* lower;
  int weightX;
  int weightY;
  int one(int x) const {
    const int top = upper[x] * (kOne - weightX) + upper[x + 1] * weightX;
    const int bottom = lower[x] * (kOne - weightX) + lower[x + 1] * weightX;
    return (top * (kOne - weightY) + bottom * weightY + (1 << 15)) >> 16;
  }
  Vec across(const std::uint8_t* row) const {
    return hn::Add(hn::Mul(load(row), constant(kOne - weightX)), hn::Mul(load(row + 1), constant(weightX)));
  }
  Vec many(int x) const {
    const Vec top = across(upper + x);
    if (weightY == 0)
      return hn::ShiftRight<8>(hn::Add(top, constant(128)));
    // The weighted sum has 24 bits: its upper 16 are the sum of the upper halves and the carry of the lower.
    const Vec bottom = across(lower + x);
    const Vec topWeight = constant((kOne - weightY) << kWeightBits);
    const Vec bottomWeight = constant(weightY << kWeightBits);
    const Vec low = hn::Mul(top, topWeight);
    const Vec carried =
        hn::IfThenElseZero(hn::Lt(hn::Add(low, hn::Mul(bottom, bottomWeight)), low), constant(1));
    const Vec high = hn::Add(hn::MulHigh(top, topWeight), hn::MulHigh(bottom, bottomWeight));
    return hn::ShiftRight<8>(hn::Add(hn::Add(high, carried), constant(128)));
  }
};

}  // namespace

void sampleShiftedRow(const std::uint8_t* upper, const std::uint8_t* lower, int weightX, int weightY,
                      std::uint8_t* HWY_RESTRICT out, int count) {
  run(Shifted{upper, lower, weightX, weightY}, out, count);
}

#if HWY_TARGET == HWY_SCALAR

template <int kBytesOfPixel>
void samplePixels(const PixelPlane& plane, const PixelRamp& ramp, std::uint8_t* const* channels,
                  int channelCount, int count) {
  const std::ptrdiff_t stride = static_cast<std::ptrdiff_t>(plane.width) * kBytesOfPixel;
  const auto place = [](std::int64_t value, int size) {
    return static_cast<int>(
        std::clamp<std::int64_t>((value + 128) >> (kRampBits - kWeightBits), 0, (size - 1) * kOne));
  };
  for (int i = 0; i < count; ++i) {
    const int x = place(ramp.x + std::int64_t{i} * ramp.stepX, plane.width);
    const int y = place(ramp.y + std::int64_t{i} * ramp.stepY, plane.height);
    const int column = std::min(x >> kWeightBits, plane.width - 2);
    const int line = std::min(y >> kWeightBits, plane.height - 2);
    const int weightX = x - column * kOne;
    const int weightY = y - line * kOne;
    const std::uint8_t* upper = plane.data + line * stride + std::ptrdiff_t{column} * kBytesOfPixel;
    for (int channel = 0; channel < channelCount; ++channel) {
      const std::uint8_t* at = upper + channel;
      const int top = at[0] * kOne + (at[kBytesOfPixel] - at[0]) * weightX;
      const int bottom = at[stride] * kOne + (at[stride + kBytesOfPixel] - at[stride]) * weightX;
      channels[channel][i] =
          static_cast<std::uint8_t>((top * kOne + (bottom - top) * weightY + (1 << 15)) >> 16);
    }
  }
}

void sampleLumaPixels(const PixelPlane& plane, const PixelRamp& ramp, std::uint8_t* luma, std::uint8_t* alpha,
                      int count) {
  std::uint8_t* const channels[] = {luma, alpha};
  samplePixels<2>(plane, ramp, channels, 2, count);
}

void sampleChromaPixels(const PixelPlane& plane, const PixelRamp& ramp, std::uint8_t* u, std::uint8_t* v,
                        std::uint8_t* alpha, int count) {
  std::uint8_t* const channels[] = {u, v, alpha};
  samplePixels<4>(plane, ramp, channels, 3, count);
}

#else

namespace {

constexpr hn::ScalableTag<std::int32_t> kNumbers;
using Numbers = hn::Vec<decltype(kNumbers)>;
// The last vector of a block may be a part of it only.
constexpr int kSpare = 64;
constexpr std::size_t kBlock = kPixelsMost + kSpare;

/// The points of a call: the number of the upper left pixel around each, and the weights of the right and the
/// lower ones.
struct Points {
  HWY_ALIGN std::array<std::int32_t, kBlock> pixels;
  HWY_ALIGN std::array<std::int32_t, kBlock> weightsX;
  HWY_ALIGN std::array<std::int32_t, kBlock> weightsY;

  Points(const PixelPlane& plane, const PixelRamp& ramp, int count) {
    const int lanes = static_cast<int>(hn::Lanes(kNumbers));
    const auto round = hn::Set(kNumbers, 1 << (kRampBits - kWeightBits) >> 1);
    const auto zero = hn::Zero(kNumbers);
    const auto endX = hn::Set(kNumbers, (plane.width - 1) * kOne);
    const auto endY = hn::Set(kNumbers, (plane.height - 1) * kOne);
    // The last column is read as the right one of a pair with full weight, so that no pair leaves the plane.
    const auto lastColumn = hn::Set(kNumbers, plane.width - 2);
    const auto lastLine = hn::Set(kNumbers, plane.height - 2);
    const auto width = hn::Set(kNumbers, plane.width);
    const auto lane = hn::Iota(kNumbers, 0);
    auto x = hn::Add(hn::Set(kNumbers, ramp.x), hn::Mul(lane, hn::Set(kNumbers, ramp.stepX)));
    auto y = hn::Add(hn::Set(kNumbers, ramp.y), hn::Mul(lane, hn::Set(kNumbers, ramp.stepY)));
    const auto wayX = hn::Mul(hn::Set(kNumbers, lanes), hn::Set(kNumbers, ramp.stepX));
    const auto wayY = hn::Mul(hn::Set(kNumbers, lanes), hn::Set(kNumbers, ramp.stepY));
    for (int i = 0; i < count; i += lanes) {
      const auto placeX =
          hn::Min(hn::Max(hn::ShiftRight<kRampBits - kWeightBits>(hn::Add(x, round)), zero), endX);
      const auto placeY =
          hn::Min(hn::Max(hn::ShiftRight<kRampBits - kWeightBits>(hn::Add(y, round)), zero), endY);
      const auto column = hn::Min(hn::ShiftRight<kWeightBits>(placeX), lastColumn);
      const auto line = hn::Min(hn::ShiftRight<kWeightBits>(placeY), lastLine);
      hn::Store(hn::Add(hn::Mul(line, width), column), kNumbers, pixels.data() + i);
      hn::Store(hn::Sub(placeX, hn::ShiftLeft<kWeightBits>(column)), kNumbers, weightsX.data() + i);
      hn::Store(hn::Sub(placeY, hn::ShiftLeft<kWeightBits>(line)), kNumbers, weightsY.data() + i);
      x = hn::Add(x, wayX);
      y = hn::Add(y, wayY);
    }
  }
};

using Lookups = std::array<std::uint32_t, kBlock>;

inline std::uint32_t fourBytes(const std::uint8_t* at) {
  std::uint32_t bytes = 0;
  std::memcpy(&bytes, at, sizeof bytes);
  return bytes;
}

inline Numbers numbers(const Lookups& from, int i) {
  return hn::BitCast(kNumbers, hn::Load(hn::RebindToUnsigned<decltype(kNumbers)>(), from.data() + i));
}

template <int kPlace>
HWY_INLINE Numbers byteOf(Numbers pixel) {
  return hn::And(hn::ShiftRight<8 * kPlace>(pixel), hn::Set(kNumbers, 255));
}

HWY_INLINE Numbers across(Numbers left, Numbers right, Numbers weight) {
  return hn::Add(hn::ShiftLeft<kWeightBits>(left), hn::Mul(hn::Sub(right, left), weight));
}

HWY_INLINE void store(Numbers top, Numbers bottom, Numbers weight, std::uint8_t* out) {
  const hn::Rebind<std::uint8_t, decltype(kNumbers)> bytes;
  const auto sum = hn::Add(hn::Add(hn::ShiftLeft<kWeightBits>(top), hn::Set(kNumbers, 1 << 15)),
                           hn::Mul(hn::Sub(bottom, top), weight));
  hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<16>(sum)), bytes, out);
}

/// Rows of a call, which end with the last whole vector.
struct OutRow {
  std::array<std::uint8_t, kBlock> samples;

  void copyTo(std::uint8_t* out, int count) const {
    std::memcpy(out, samples.data(), static_cast<std::size_t>(count));
  }
};

}  // namespace

void sampleLumaPixels(const PixelPlane& plane, const PixelRamp& ramp, std::uint8_t* HWY_RESTRICT luma,
                      std::uint8_t* HWY_RESTRICT alpha, int count) {
  const Points points(plane, ramp, count);
  const int lanes = static_cast<int>(hn::Lanes(kNumbers));
  const int whole = (count + lanes - 1) / lanes * lanes;
  HWY_ALIGN Lookups upper;
  HWY_ALIGN Lookups lower;
  const std::uint8_t* nextLine = plane.data + static_cast<std::ptrdiff_t>(plane.width) * 2;
  for (std::size_t i = 0; i < static_cast<std::size_t>(whole); ++i) {
    const std::ptrdiff_t at = std::ptrdiff_t{points.pixels[i]} * 2;
    upper[i] = fourBytes(plane.data + at);
    lower[i] = fourBytes(nextLine + at);
  }
  OutRow lumas;
  OutRow alphas;
  for (int i = 0; i < whole; i += lanes) {
    const auto weightX = hn::Load(kNumbers, points.weightsX.data() + i);
    const auto weightY = hn::Load(kNumbers, points.weightsY.data() + i);
    const auto top = numbers(upper, i);
    const auto bottom = numbers(lower, i);
    store(across(byteOf<0>(top), byteOf<2>(top), weightX),
          across(byteOf<0>(bottom), byteOf<2>(bottom), weightX), weightY, lumas.samples.data() + i);
    store(across(byteOf<1>(top), byteOf<3>(top), weightX),
          across(byteOf<1>(bottom), byteOf<3>(bottom), weightX), weightY, alphas.samples.data() + i);
  }
  lumas.copyTo(luma, count);
  alphas.copyTo(alpha, count);
}

void sampleChromaPixels(const PixelPlane& plane, const PixelRamp& ramp, std::uint8_t* HWY_RESTRICT u,
                        std::uint8_t* HWY_RESTRICT v, std::uint8_t* HWY_RESTRICT alpha, int count) {
  const Points points(plane, ramp, count);
  const int lanes = static_cast<int>(hn::Lanes(kNumbers));
  const int whole = (count + lanes - 1) / lanes * lanes;
  HWY_ALIGN Lookups upperLeft;
  HWY_ALIGN Lookups upperRight;
  HWY_ALIGN Lookups lowerLeft;
  HWY_ALIGN Lookups lowerRight;
  const std::uint8_t* nextLine = plane.data + static_cast<std::ptrdiff_t>(plane.width) * 4;
  for (std::size_t i = 0; i < static_cast<std::size_t>(whole); ++i) {
    const std::ptrdiff_t at = std::ptrdiff_t{points.pixels[i]} * 4;
    upperLeft[i] = fourBytes(plane.data + at);
    upperRight[i] = fourBytes(plane.data + at + 4);
    lowerLeft[i] = fourBytes(nextLine + at);
    lowerRight[i] = fourBytes(nextLine + at + 4);
  }
  OutRow us;
  OutRow vs;
  OutRow alphas;
  for (int i = 0; i < whole; i += lanes) {
    const auto weightX = hn::Load(kNumbers, points.weightsX.data() + i);
    const auto weightY = hn::Load(kNumbers, points.weightsY.data() + i);
    const auto topLeft = numbers(upperLeft, i);
    const auto topRight = numbers(upperRight, i);
    const auto bottomLeft = numbers(lowerLeft, i);
    const auto bottomRight = numbers(lowerRight, i);
    store(across(byteOf<0>(topLeft), byteOf<0>(topRight), weightX),
          across(byteOf<0>(bottomLeft), byteOf<0>(bottomRight), weightX), weightY, us.samples.data() + i);
    store(across(byteOf<1>(topLeft), byteOf<1>(topRight), weightX),
          across(byteOf<1>(bottomLeft), byteOf<1>(bottomRight), weightX), weightY, vs.samples.data() + i);
    store(across(byteOf<2>(topLeft), byteOf<2>(topRight), weightX),
          across(byteOf<2>(bottomLeft), byteOf<2>(bottomRight), weightX), weightY, alphas.samples.data() + i);
  }
  us.copyTo(u, count);
  vs.copyTo(v, count);
  alphas.copyTo(alpha, count);
}

#endif

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(sampleLumaPixels);
HWY_EXPORT(sampleChromaPixels);
HWY_EXPORT(sampleShiftedRow);

void sampleLumaPixels(const PixelPlane& plane, const PixelRamp& ramp, std::uint8_t* luma, std::uint8_t* alpha,
                      int count) {
  HWY_DYNAMIC_DISPATCH(sampleLumaPixels)(plane, ramp, luma, alpha, count);
}

void sampleChromaPixels(const PixelPlane& plane, const PixelRamp& ramp, std::uint8_t* u, std::uint8_t* v,
                        std::uint8_t* alpha, int count) {
  HWY_DYNAMIC_DISPATCH(sampleChromaPixels)(plane, ramp, u, v, alpha, count);
}

void sampleShiftedRow(const std::uint8_t* upper, const std::uint8_t* lower, int weightX, int weightY,
                      std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(sampleShiftedRow)(upper, lower, weightX, weightY, out, count);
}

}  // namespace korvia
#endif

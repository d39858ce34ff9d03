#include "ColorKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/ColorKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>

#include "engine/kernels/RowLoop-inl.h"

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

namespace {

struct Threshold {
  const std::uint8_t* luma;
  int gain;
  int threshold;
  int one(int x) const { return gain * std::clamp<int>(luma[x], 16, 235) - threshold; }
  Vec many(int x) const {
    const Vec visible = hn::Min(hn::Max(load(luma + x), constant(16)), constant(235));
    return hn::Sub(hn::Mul(visible, constant(gain)), constant(threshold));
  }
};

struct Brighter {
  const std::uint8_t* a;
  const std::uint8_t* b;
  int one(int x) const { return 128 + 4 * (b[x] - a[x]); }
  Vec many(int x) const {
    return hn::Add(constant(128), hn::ShiftLeft<2>(hn::Sub(load(b + x), load(a + x))));
  }
};

struct FadeKey {
  const std::uint8_t* key;
  int rise;
  int fall;
  int one(int x) const { return (key[x] * rise + (255 - key[x]) * fall + 128) >> 8; }
  Vec many(int x) const {
    const Vec k = load(key + x);
    const Vec risen = hn::Mul(k, constant(rise));
    const Vec fallen = hn::Mul(hn::Sub(constant(255), k), constant(fall));
    return hn::ShiftRight<8>(hn::Add(hn::Add(risen, fallen), constant(128)));
  }
};

struct Edge {
  const std::uint8_t* mask;
  int one(int x) const { return (mask[x] * (255 - mask[x])) >> 8; }
  Vec many(int x) const {
    const Vec m = load(mask + x);
    return hn::ShiftRight<8>(hn::Mul(m, hn::Sub(constant(255), m)));
  }
};

struct Shade {
  const std::uint8_t* relief;
  int depth;
  int one(int x) const { return ((255 - relief[x]) * depth) >> 8; }
  Vec many(int x) const {
    return hn::ShiftRight<8>(hn::Mul(hn::Sub(constant(255), load(relief + x)), constant(depth)));
  }
};

struct MixPartlyInverted {
  PartlyInvertedRow a;
  PartlyInvertedRow b;
  int ends;
  int weight;
  int inverted(const PartlyInvertedRow& row, int x) const {
    return mixedBy255(row.samples[x], byte(ends - row.samples[x]), row.weight[x]);
  }
  int one(int x) const { return mixedBy256(inverted(a, x), inverted(b, x), weight); }
  Vec inverted(const PartlyInvertedRow& row, Vec samples, int x) const {
    const Vec negative = hn::Sub(constant(ends), samples);
    const auto held = hn::Min(hn::Max(hn::BitCast(kSigned, negative), hn::Zero(kSigned)),
                              hn::Set(kSigned, std::int16_t{255}));
    return mixedBy255(samples, hn::BitCast(kSamples, held), load(row.weight + x));
  }
  Vec many(int x) const {
    return mixedBy256(inverted(a, load(a.samples + x), x), inverted(b, load(b.samples + x), x), weight);
  }
};

struct MixTowards {
  const std::uint8_t* a;
  const std::uint8_t* b;
  const std::uint8_t* mask;
  int target;
  const std::uint8_t* weight;
  int one(int x) const { return mixedBy255(mixedBy255(a[x], b[x], mask[x]), target, weight[x]); }
  Vec many(int x) const {
    const Vec mixed = mixedBy255(load(a + x), load(b + x), load(mask + x));
    return mixedBy255(mixed, constant(target), load(weight + x));
  }
};

// 65536 / 219, so that the high half of a product is the product over the range of luma.
constexpr int kPerLuma = 299;
// The same for a product that was divided by four before.
constexpr int kPerQuarterLuma = 1197;

struct MultiplyLuma {
  const std::uint8_t* a;
  const std::uint8_t* b;
  static int lightOf(int luma) { return std::max(luma - 16, 0); }
  int one(int x) const { return 16 + (((lightOf(a[x]) * lightOf(b[x]) + 109) * kPerLuma) >> 16); }
  Vec many(int x) const {
    const Vec black = constant(16);
    const Vec lightA = hn::Sub(hn::Max(load(a + x), black), black);
    const Vec lightB = hn::Sub(hn::Max(load(b + x), black), black);
    const Vec product = hn::Add(hn::Mul(lightA, lightB), constant(109));
    return hn::Add(black, hn::MulHigh(product, constant(kPerLuma)));
  }
};

struct MultiplyChroma {
  const std::uint8_t* a;
  const std::uint8_t* b;
  const std::uint8_t* lumaA;
  const std::uint8_t* lumaB;
  static int tinted(int chroma, int luma) { return ((chroma - 128) * MultiplyLuma::lightOf(luma)) >> 2; }
  int one(int x) const {
    const int sum = tinted(a[x], lumaB[x]) + tinted(b[x], lumaA[x]) + 27;
    return std::clamp(128 + ((sum * kPerQuarterLuma) >> 16), 16, 240);
  }
  static hn::Vec<Signed> tinted(const std::uint8_t* chroma, const std::uint8_t* luma) {
    const Vec black = constant(16);
    const auto color = hn::BitCast(kSigned, hn::Sub(load(chroma), constant(128)));
    const auto light = hn::BitCast(kSigned, hn::Sub(hn::Max(load(luma), black), black));
    return hn::ShiftRight<2>(hn::Mul(color, light));
  }
  Vec many(int x) const {
    const auto sum = hn::Add(hn::Add(tinted(a + x, lumaB + x), tinted(b + x, lumaA + x)),
                             hn::Set(kSigned, std::int16_t{27}));
    const auto color = hn::MulHigh(sum, hn::Set(kSigned, std::int16_t{kPerQuarterLuma}));
    const auto chroma = hn::Add(color, hn::Set(kSigned, std::int16_t{128}));
    return hn::BitCast(kSamples, hn::Min(hn::Max(chroma, hn::Set(kSigned, std::int16_t{16})),
                                         hn::Set(kSigned, std::int16_t{240})));
  }
};

struct MixOver {
  const std::uint8_t* a;
  const std::uint8_t* middle;
  const std::uint8_t* b;
  const std::uint8_t* way;
  int one(int x) const {
    const int weightA = std::max(255 - 2 * way[x], 0);
    const int weightB = std::max(2 * way[x] - 255, 0);
    return dividedBy255(a[x] * weightA + middle[x] * (255 - weightA - weightB) + b[x] * weightB);
  }
  Vec many(int x) const {
    const Vec full = constant(255);
    const Vec twice = hn::ShiftLeft<1>(load(way + x));
    const Vec weightA = hn::Sub(full, hn::Min(twice, full));
    const Vec weightB = hn::Sub(hn::Max(twice, full), full);
    const Vec weightMiddle = hn::Sub(hn::Sub(full, weightA), weightB);
    const Vec ends = hn::Add(hn::Mul(load(a + x), weightA), hn::Mul(load(b + x), weightB));
    return dividedBy255(hn::Add(ends, hn::Mul(load(middle + x), weightMiddle)));
  }
};

}  // namespace

void thresholdRow(const std::uint8_t* luma, int gain, int threshold, std::uint8_t* HWY_RESTRICT out,
                  int count) {
  run(Threshold{luma, gain, threshold}, out, count);
}

void brighterRow(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* HWY_RESTRICT out, int count) {
  run(Brighter{a, b}, out, count);
}

void fadeKeyRow(int rise, int fall, std::uint8_t* key, int count) {
  run(FadeKey{key, rise, fall}, key, count);
}

void edgeRow(const std::uint8_t* mask, std::uint8_t* HWY_RESTRICT out, int count) {
  run(Edge{mask}, out, count);
}

void shadeRow(const std::uint8_t* relief, int depth, std::uint8_t* HWY_RESTRICT out, int count) {
  run(Shade{relief, depth}, out, count);
}

void chromaMeanRow(const std::uint8_t* upper, const std::uint8_t* lower, std::uint8_t* HWY_RESTRICT out,
                   int width) {
  const int pairs = width / 2;
  int x = 0;
#if HWY_TARGET != HWY_SCALAR
  // Two samples that lie side by side are the halves of one lane, whichever of them is the low one.
  const int lanes = static_cast<int>(hn::Lanes(kSamples));
  const hn::Repartition<std::uint8_t, Samples> sideBySide;
  const auto pairSum = [&](const std::uint8_t* row) HWY_ATTR {
    const Vec pair = hn::BitCast(kSamples, hn::LoadU(sideBySide, row));
    return hn::Add(hn::And(pair, constant(255)), hn::ShiftRight<8>(pair));
  };
  for (; x + lanes <= pairs; x += lanes) {
    const Vec sum = hn::Add(hn::Add(pairSum(upper + 2 * x), pairSum(lower + 2 * x)), constant(2));
    hn::StoreU(bytesOf(hn::ShiftRight<2>(sum)), kBytes, out + x);
  }
#endif
  for (; x < pairs; ++x)
    out[x] = byte((upper[2 * x] + upper[2 * x + 1] + lower[2 * x] + lower[2 * x + 1] + 2) >> 2);
  if (width % 2 != 0)
    out[pairs] = byte((upper[width - 1] + lower[width - 1] + 1) >> 1);
}

void mixPartlyInvertedRow(const PartlyInvertedRow& a, const PartlyInvertedRow& b, int ends, int weight,
                          std::uint8_t* HWY_RESTRICT out, int count) {
  runNonTemporal(MixPartlyInverted{a, b, ends, weight}, out, count);
}

void mixTowardsRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, int target,
                   const std::uint8_t* weight, std::uint8_t* HWY_RESTRICT out, int count) {
  runNonTemporal(MixTowards{a, b, mask, target, weight}, out, count);
}

void multiplyLumaRow(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* HWY_RESTRICT out,
                     int count) {
  run(MultiplyLuma{a, b}, out, count);
}

void multiplyChromaRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* lumaA,
                       const std::uint8_t* lumaB, std::uint8_t* HWY_RESTRICT out, int count) {
  run(MultiplyChroma{a, b, lumaA, lumaB}, out, count);
}

void mixOverRow(const std::uint8_t* a, const std::uint8_t* middle, const std::uint8_t* b,
                const std::uint8_t* way, std::uint8_t* HWY_RESTRICT out, int count) {
  runNonTemporal(MixOver{a, middle, b, way}, out, count);
}

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(thresholdRow);
HWY_EXPORT(brighterRow);
HWY_EXPORT(fadeKeyRow);
HWY_EXPORT(edgeRow);
HWY_EXPORT(shadeRow);
HWY_EXPORT(chromaMeanRow);
HWY_EXPORT(mixPartlyInvertedRow);
HWY_EXPORT(mixTowardsRow);
HWY_EXPORT(multiplyLumaRow);
HWY_EXPORT(multiplyChromaRow);
HWY_EXPORT(mixOverRow);

void thresholdRow(const std::uint8_t* luma, int gain, int threshold, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(thresholdRow)(luma, gain, threshold, out, count);
}

void brighterRow(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(brighterRow)(a, b, out, count);
}

void fadeKeyRow(int rise, int fall, std::uint8_t* key, int count) {
  HWY_DYNAMIC_DISPATCH(fadeKeyRow)(rise, fall, key, count);
}

void edgeRow(const std::uint8_t* mask, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(edgeRow)(mask, out, count);
}

void shadeRow(const std::uint8_t* relief, int depth, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(shadeRow)(relief, depth, out, count);
}

void chromaMeanRow(const std::uint8_t* upper, const std::uint8_t* lower, std::uint8_t* out, int width) {
  HWY_DYNAMIC_DISPATCH(chromaMeanRow)(upper, lower, out, width);
}

void mixPartlyInvertedRow(const PartlyInvertedRow& a, const PartlyInvertedRow& b, int ends, int weight,
                          std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(mixPartlyInvertedRow)(a, b, ends, weight, out, count);
}

void mixTowardsRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, int target,
                   const std::uint8_t* weight, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(mixTowardsRow)(a, b, mask, target, weight, out, count);
}

void multiplyLumaRow(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(multiplyLumaRow)(a, b, out, count);
}

void multiplyChromaRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* lumaA,
                       const std::uint8_t* lumaB, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(multiplyChromaRow)(a, b, lumaA, lumaB, out, count);
}

void mixOverRow(const std::uint8_t* a, const std::uint8_t* middle, const std::uint8_t* b,
                const std::uint8_t* way, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(mixOverRow)(a, middle, b, way, out, count);
}

}  // namespace korvia
#endif

#include "RowKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/RowKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <cstring>

#include "engine/kernels/RowLoop-inl.h"

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

namespace {

struct Mix {
  const std::uint8_t* a;
  const std::uint8_t* b;
  int weight;
  int one(int x) const { return mixedBy256(a[x], b[x], weight); }
  Vec many(int x) const { return mixedBy256(load(a + x), load(b + x), weight); }
};

struct MixMasked {
  const std::uint8_t* a;
  const std::uint8_t* b;
  const std::uint8_t* mask;
  int one(int x) const { return mixedBy255(a[x], b[x], mask[x]); }
  Vec many(int x) const { return mixedBy255(load(a + x), load(b + x), load(mask + x)); }
};

struct MixMaskedLit {
  MixMasked mix;
  const std::int8_t* light;
  int one(int x) const {
    const int mixed = mix.one(x);
    return mixed + (((mixed - 16) * light[x] + 64) >> 7);
  }
  Vec many(int x) const {
    const auto mixed = hn::BitCast(kSigned, mix.many(x));
    const hn::Rebind<std::int8_t, Samples> lights;
    const auto gain = hn::PromoteTo(kSigned, hn::LoadU(lights, light + x));
    const auto aboveBlack = hn::Sub(mixed, hn::Set(kSigned, std::int16_t{16}));
    const auto added = hn::Add(hn::Mul(aboveBlack, gain), hn::Set(kSigned, std::int16_t{64}));
    return hn::BitCast(kSamples, hn::Add(mixed, hn::ShiftRight<7>(added)));
  }
};

struct BlendPremultiplied {
  const std::uint8_t* top;
  const std::uint8_t* alpha;
  int black;
  const std::uint8_t* under;
  // Division by 255 is exact for positive sums only, so black is part of the sum and subtracted afterwards.
  int one(int x) const { return top[x] + mixedBy255(under[x], black, alpha[x]) - black; }
  Vec many(int x) const {
    const Vec none = constant(black);
    return hn::Sub(hn::Add(load(top + x), mixedBy255(load(under + x), none, load(alpha + x))), none);
  }
};

}  // namespace

void copyRowNonTemporal(const std::uint8_t* HWY_RESTRICT from, std::uint8_t* HWY_RESTRICT out, int count) {
  const hn::ScalableTag<std::uint8_t> d8;
  const int lanes = static_cast<int>(hn::Lanes(d8));
  int x = 0;
  if (reinterpret_cast<std::uintptr_t>(out) % static_cast<std::uintptr_t>(lanes) == 0)
    for (; x + lanes <= count; x += lanes)
      hn::Stream(hn::LoadU(d8, from + x), d8, out + x);
  std::memcpy(out + x, from + x, static_cast<std::size_t>(count - x));
}

void mixRow(const std::uint8_t* a, const std::uint8_t* b, int weight, std::uint8_t* HWY_RESTRICT out,
            int count) {
  runNonTemporal(Mix{a, b, weight}, out, count);
}

void mixMaskedRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask,
                  std::uint8_t* HWY_RESTRICT out, int count) {
  runNonTemporal(MixMasked{a, b, mask}, out, count);
}

void mixMaskedLitRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask,
                     const std::int8_t* light, std::uint8_t* HWY_RESTRICT out, int count) {
  runNonTemporal(MixMaskedLit{{a, b, mask}, light}, out, count);
}

void blendPremultipliedRow(const std::uint8_t* top, const std::uint8_t* alpha, int black, std::uint8_t* row,
                           int count) {
  run(BlendPremultiplied{top, alpha, black, row}, row, count);
}

#if HWY_TARGET == HWY_SCALAR

void scaleRow(const std::uint8_t* row, const ColumnTable& table, std::uint8_t* out) {
  constexpr int kOne = 1 << ColumnTable::kWeightBits;
  for (const ColumnTable::Group& group : table.groups()) {
    const std::uint8_t* window = row + group.offset;
    for (int i = 0; i < ColumnTable::kGroup; ++i) {
      const int weight = group.rightWeight[i];
      const int sum = window[group.left[i]] * (kOne - weight) + window[group.right[i]] * weight;
      *out++ = static_cast<std::uint8_t>((sum + kOne / 2) >> ColumnTable::kWeightBits);
    }
  }
}

#else

void scaleRow(const std::uint8_t* HWY_RESTRICT row, const ColumnTable& table,
              std::uint8_t* HWY_RESTRICT out) {
  const hn::FixedTag<std::uint8_t, ColumnTable::kWindow> d8;
  const hn::FixedTag<std::uint8_t, ColumnTable::kGroup> group8;
  const hn::FixedTag<std::uint16_t, ColumnTable::kGroup> d16;
  const hn::RebindToSigned<decltype(d16)> i16;
  const auto one = hn::Set(d16, std::uint16_t{1 << ColumnTable::kWeightBits});
  const auto round = hn::Set(d16, std::uint16_t{1 << (ColumnTable::kWeightBits - 1)});
  for (const ColumnTable::Group& group : table.groups()) {
    const auto window = hn::LoadU(d8, row + group.offset);
    const auto left = hn::TableLookupBytes(window, hn::LoadU(group8, group.left.data()));
    const auto right = hn::TableLookupBytes(window, hn::LoadU(group8, group.right.data()));
    const auto weight = hn::PromoteTo(d16, hn::LoadU(group8, group.rightWeight.data()));
    const auto sum = hn::Add(hn::Mul(hn::PromoteTo(d16, left), hn::Sub(one, weight)),
                             hn::Mul(hn::PromoteTo(d16, right), weight));
    const auto scaled = hn::ShiftRight<ColumnTable::kWeightBits>(hn::Add(sum, round));
    hn::StoreU(hn::DemoteTo(group8, hn::BitCast(i16, scaled)), group8, out);
    out += ColumnTable::kGroup;
  }
}

#endif

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(copyRowNonTemporal);
HWY_EXPORT(mixRow);
HWY_EXPORT(mixMaskedRow);
HWY_EXPORT(mixMaskedLitRow);
HWY_EXPORT(blendPremultipliedRow);
HWY_EXPORT(scaleRow);

void copyRowNonTemporal(const std::uint8_t* from, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(copyRowNonTemporal)(from, out, count);
}

void mixRow(const std::uint8_t* a, const std::uint8_t* b, int weight, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(mixRow)(a, b, weight, out, count);
}

void mixMaskedRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, std::uint8_t* out,
                  int count) {
  HWY_DYNAMIC_DISPATCH(mixMaskedRow)(a, b, mask, out, count);
}

void mixMaskedLitRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask,
                     const std::int8_t* light, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(mixMaskedLitRow)(a, b, mask, light, out, count);
}

void blendPremultipliedRow(const std::uint8_t* top, const std::uint8_t* alpha, int black, std::uint8_t* row,
                           int count) {
  HWY_DYNAMIC_DISPATCH(blendPremultipliedRow)(top, alpha, black, row, count);
}

void scaleRow(const std::uint8_t* row, const ColumnTable& table, std::uint8_t* out) {
  HWY_DYNAMIC_DISPATCH(scaleRow)(row, table, out);
}

}  // namespace korvia
#endif

#include "RowKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/RowKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>

#include "engine/kernels/StoreRow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

// under * (255 - alpha) + black * alpha stays positive, so that it can be divided by 255 exactly; black is
// taken off after.
inline std::uint8_t blended(int top, int alpha, int under, int black) {
  const int sum = under * (255 - alpha) + black * alpha + 128;
  return static_cast<std::uint8_t>(std::clamp(top + ((sum + (sum >> 8)) >> 8) - black, 0, 255));
}

inline std::uint8_t mixedByMask(int a, int b, int mask) {
  const int sum = a * (255 - mask) + b * mask + 128;
  return static_cast<std::uint8_t>((sum + (sum >> 8)) >> 8);
}

#if HWY_TARGET == HWY_SCALAR

// A machine without any vectors, or without those that the kernels need.
void mixRow(const std::uint8_t* a, const std::uint8_t* b, int weight, std::uint8_t* out, int count) {
  for (int x = 0; x < count; ++x)
    out[x] = static_cast<std::uint8_t>((a[x] * (256 - weight) + b[x] * weight + 128) >> 8);
}

void mixMaskedRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, std::uint8_t* out,
                  int count) {
  for (int x = 0; x < count; ++x)
    out[x] = mixedByMask(a[x], b[x], mask[x]);
}

void blendRow(const std::uint8_t* top, const std::uint8_t* alpha, int black, std::uint8_t* row, int count) {
  for (int x = 0; x < count; ++x)
    row[x] = blended(top[x], alpha[x], row[x], black);
}

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

namespace hn = hwy::HWY_NAMESPACE;

void mixRow(const std::uint8_t* HWY_RESTRICT a, const std::uint8_t* HWY_RESTRICT b, int weight,
            std::uint8_t* HWY_RESTRICT out, int count) {
  const hn::ScalableTag<std::uint16_t> d16;
  const hn::Rebind<std::uint8_t, decltype(d16)> d8;
  const hn::RebindToSigned<decltype(d16)> i16;
  const auto weightB = hn::Set(d16, static_cast<std::uint16_t>(weight));
  const auto weightA = hn::Set(d16, static_cast<std::uint16_t>(256 - weight));
  const auto round = hn::Set(d16, std::uint16_t{128});
  int x = storeRow(out, count, [&](int at) HWY_ATTR {
    const auto va = hn::PromoteTo(d16, hn::LoadU(d8, a + at));
    const auto vb = hn::PromoteTo(d16, hn::LoadU(d8, b + at));
    const auto sum = hn::Add(hn::Add(hn::Mul(va, weightA), hn::Mul(vb, weightB)), round);
    return hn::DemoteTo(d8, hn::BitCast(i16, hn::ShiftRight<8>(sum)));
  });
  for (; x < count; ++x)
    out[x] = static_cast<std::uint8_t>((a[x] * (256 - weight) + b[x] * weight + 128) >> 8);
}

void mixMaskedRow(const std::uint8_t* HWY_RESTRICT a, const std::uint8_t* HWY_RESTRICT b,
                  const std::uint8_t* HWY_RESTRICT mask, std::uint8_t* HWY_RESTRICT out, int count) {
  const hn::ScalableTag<std::uint16_t> d16;
  const hn::Rebind<std::uint8_t, decltype(d16)> d8;
  const hn::RebindToSigned<decltype(d16)> i16;
  const auto full = hn::Set(d16, std::uint16_t{255});
  const auto round = hn::Set(d16, std::uint16_t{128});
  int x = storeRow(out, count, [&](int at) HWY_ATTR {
    const auto va = hn::PromoteTo(d16, hn::LoadU(d8, a + at));
    const auto vb = hn::PromoteTo(d16, hn::LoadU(d8, b + at));
    const auto m = hn::PromoteTo(d16, hn::LoadU(d8, mask + at));
    const auto sum = hn::Add(hn::Add(hn::Mul(va, hn::Sub(full, m)), hn::Mul(vb, m)), round);
    return hn::DemoteTo(d8, hn::BitCast(i16, hn::ShiftRight<8>(hn::Add(sum, hn::ShiftRight<8>(sum)))));
  });
  for (; x < count; ++x)
    out[x] = mixedByMask(a[x], b[x], mask[x]);
}

void blendRow(const std::uint8_t* HWY_RESTRICT top, const std::uint8_t* HWY_RESTRICT alpha, int black,
              std::uint8_t* HWY_RESTRICT row, int count) {
  const hn::ScalableTag<std::uint16_t> d16;
  const hn::Rebind<std::uint8_t, decltype(d16)> d8;
  const hn::RebindToSigned<decltype(d16)> i16;
  const int lanes = static_cast<int>(hn::Lanes(d16));
  const auto full = hn::Set(d16, std::uint16_t{255});
  const auto round = hn::Set(d16, std::uint16_t{128});
  const auto none = hn::Set(d16, static_cast<std::uint16_t>(black));
  int x = 0;
  for (; x + lanes <= count; x += lanes) {
    const auto a = hn::PromoteTo(d16, hn::LoadU(d8, alpha + x));
    const auto u = hn::PromoteTo(d16, hn::LoadU(d8, row + x));
    const auto t = hn::PromoteTo(d16, hn::LoadU(d8, top + x));
    const auto sum = hn::Add(hn::Add(hn::Mul(u, hn::Sub(full, a)), hn::Mul(none, a)), round);
    const auto dimmed = hn::ShiftRight<8>(hn::Add(sum, hn::ShiftRight<8>(sum)));
    // Below zero it wraps to what is negative as a signed number.
    hn::StoreU(hn::DemoteTo(d8, hn::BitCast(i16, hn::Sub(hn::Add(t, dimmed), none))), d8, row + x);
  }
  for (; x < count; ++x)
    row[x] = blended(top[x], alpha[x], row[x], black);
}

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

HWY_EXPORT(mixRow);
HWY_EXPORT(mixMaskedRow);
HWY_EXPORT(blendRow);
HWY_EXPORT(scaleRow);

void mixRow(const std::uint8_t* a, const std::uint8_t* b, int weight, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(mixRow)(a, b, weight, out, count);
}

void mixMaskedRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, std::uint8_t* out,
                  int count) {
  HWY_DYNAMIC_DISPATCH(mixMaskedRow)(a, b, mask, out, count);
}

void blendRow(const std::uint8_t* top, const std::uint8_t* alpha, int black, std::uint8_t* row, int count) {
  HWY_DYNAMIC_DISPATCH(blendRow)(top, alpha, black, row, count);
}

void scaleRow(const std::uint8_t* row, const ColumnTable& table, std::uint8_t* out) {
  HWY_DYNAMIC_DISPATCH(scaleRow)(row, table, out);
}

}  // namespace korvia
#endif

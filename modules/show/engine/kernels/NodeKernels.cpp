#include "NodeKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/NodeKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <array>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

void maskFromNodes(const LevelRow& levels, std::uint8_t* mask, int count) {
  const int cell = 1 << levels.cellBits;
  const auto between = [&](int a, int b, int weight) {
    return (a * (cell - weight) + b * weight + cell / 2) >> levels.cellBits;
  };
  for (int i = 0; i < count; ++i) {
    const int node = i >> levels.cellBits;
    const int left = between(levels.upper[node], levels.lower[node], levels.down);
    const int right = between(levels.upper[node + 1], levels.lower[node + 1], levels.down);
    mask[i] = static_cast<std::uint8_t>(std::clamp(between(left, right, i & (cell - 1)), 0, 255));
  }
}

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr int kCellsOfABlock = 32;

/// The value at `weight` of a cell from a to b, rounded; the products stay within 16 bits.
template <int kCellBits, typename V>
inline V between(V a, V b, V weight) {
  const hn::DFromV<V> d;
  const auto whole = hn::Set(d, 1 << kCellBits);
  const auto half = hn::Set(d, 1 << kCellBits >> 1);
  return hn::ShiftRight<kCellBits>(
      hn::Add(hn::Add(hn::Mul(a, hn::Sub(whole, weight)), hn::Mul(b, weight)), half));
}

template <int kCellBits>
void maskOfCells(const LevelRow& levels, std::uint8_t* HWY_RESTRICT mask, int count) {
  const hn::CappedTag<std::int16_t, 16> nodes16;
  const hn::FixedTag<std::int16_t, 1 << kCellBits> cell16;
  const hn::Rebind<std::uint8_t, decltype(cell16)> cell8;
  const int lanes = static_cast<int>(hn::Lanes(nodes16));
  const auto down = hn::Set(nodes16, static_cast<std::int16_t>(levels.down));
  const auto inCell = hn::Iota(cell16, 0);
  HWY_ALIGN std::array<std::int16_t, kCellsOfABlock + 1 + 16> nodes;
  const int cells = (count + (1 << kCellBits) - 1) >> kCellBits;
  for (int begin = 0; begin < cells; begin += kCellsOfABlock) {
    const int size = std::min(kCellsOfABlock, cells - begin);
    for (int i = 0; i <= size; i += lanes)
      hn::StoreU(between<kCellBits>(hn::LoadU(nodes16, levels.upper + begin + i),
                                    hn::LoadU(nodes16, levels.lower + begin + i), down),
                 nodes16, nodes.data() + i);
    for (int i = 0; i < size; ++i) {
      const auto node = static_cast<std::size_t>(i);
      const auto level =
          between<kCellBits>(hn::Set(cell16, nodes[node]), hn::Set(cell16, nodes[node + 1]), inCell);
      hn::StoreU(hn::DemoteTo(cell8, level), cell8, mask + ((begin + i) << kCellBits));
    }
  }
}

void maskFromNodes(const LevelRow& levels, std::uint8_t* mask, int count) {
  if (levels.cellBits == 2)
    maskOfCells<2>(levels, mask, count);
  else
    maskOfCells<3>(levels, mask, count);
}

#endif

void everySecond(const std::uint8_t* HWY_RESTRICT row, std::uint8_t* HWY_RESTRICT out, int count) {
  for (int i = 0; i < count; ++i)
    out[i] = row[2 * i];
}

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(maskFromNodes);
HWY_EXPORT(everySecond);

void maskFromNodes(const LevelRow& levels, std::uint8_t* mask, int count) {
  HWY_DYNAMIC_DISPATCH(maskFromNodes)(levels, mask, count);
}

void everySecond(const std::uint8_t* row, std::uint8_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(everySecond)(row, out, count);
}

}  // namespace korvia
#endif

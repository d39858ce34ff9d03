#include "SampleKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/SampleKernels.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cstdlib>
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

/// Fraction bits that a sum over the four nodes has more than a coordinate.
inline int bentShift(const BentRow& bent) {
  return 2 * bent.cellBits + bent.fractionBits - kSampleFractionBits;
}

inline int mirrored(int place, int end) {
  return std::max(end - std::abs(end - std::abs(place)), 0);
}

void sampleBentScalar(const BentTarget* targets, int targetCount, int y, const BentRow& bent, int count) {
  const int cell = 1 << bent.cellBits;
  const int shift = bentShift(bent);
  const int endX = (targets[0].plane.width - 1) * kSampleOne;
  const int endY = (targets[0].plane.height - 1) * kSampleOne;
  const auto between = [&](const std::int32_t* upper, const std::int32_t* lower, int i) {
    const int node = i >> bent.cellBits;
    const int left = upper[node] * (cell - bent.down) + lower[node] * bent.down;
    const int right = upper[node + 1] * (cell - bent.down) + lower[node + 1] * bent.down;
    return (left * cell + (right - left) * (i & (cell - 1)) + (1 << shift >> 1)) >> shift;
  };
  for (int i = 0; i < count; ++i) {
    const int x = mirrored(i * kSampleOne + between(bent.upperX, bent.lowerX, i), endX);
    const int line = mirrored(y * kSampleOne + between(bent.upperY, bent.lowerY, i), endY);
    for (int target = 0; target < targetCount; ++target)
      targets[target].out[i] = sampleAt(targets[target].plane, x, line);
  }
}

#if HWY_TARGET == HWY_SCALAR

void sampleRow(const PlaneView& plane, const std::int32_t* x, const std::int32_t* y, std::uint8_t* out,
               int count) {
  sampleScalar(plane, x, y, out, count);
}

void sampleBentRow(const BentTarget* targets, int targetCount, int y, const BentRow& bent, int count) {
  sampleBentScalar(targets, targetCount, y, bent, count);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// Points that are looked up at a time, so that the vector loads after the look-ups do not wait for the
// single stores just before.
constexpr int kBlock = 256;

/// A block of points: the offset of the upper left of the four samples around each, and the weights of the
/// right and the lower ones.
struct PointBlock {
  HWY_ALIGN std::array<std::int32_t, kBlock> offsets;
  HWY_ALIGN std::array<std::int32_t, kBlock> weightsX;
  HWY_ALIGN std::array<std::int32_t, kBlock> weightsY;
  HWY_ALIGN std::array<std::uint16_t, kBlock> upper;
  HWY_ALIGN std::array<std::uint16_t, kBlock> lower;
};

/// Writes points inside a plane into a block.
template <typename D>
class PointWriter {
 public:
  using V = hn::Vec<D>;

  // The last column is read as the right sample of a pair with full weight, so that no pair leaves the
  // plane.
  explicit PointWriter(const PlaneView& plane)
      : lastColumn_(hn::Set(D(), plane.width - 2)),
        lastLine_(hn::Set(D(), plane.height - 2)),
        stride_(hn::Set(D(), plane.stride)) {}

  void write(V x, V y, PointBlock& block, int i) const {
    const D d;
    const auto column = hn::Min(hn::ShiftRight<kSampleFractionBits>(x), lastColumn_);
    const auto line = hn::Min(hn::ShiftRight<kSampleFractionBits>(y), lastLine_);
    hn::Store(hn::Add(hn::Mul(line, stride_), column), d, block.offsets.data() + i);
    hn::Store(hn::Sub(x, hn::ShiftLeft<kSampleFractionBits>(column)), d, block.weightsX.data() + i);
    hn::Store(hn::Sub(y, hn::ShiftLeft<kSampleFractionBits>(line)), d, block.weightsY.data() + i);
  }

 private:
  V lastColumn_;
  V lastLine_;
  V stride_;
};

inline std::uint16_t pairAt(const std::uint8_t* samples) {
  std::uint16_t pair = 0;
  std::memcpy(&pair, samples, sizeof pair);
  return pair;
}

inline void lookUp(const PlaneView& plane, PointBlock& block, int size) {
  // The processor does not foresee which rows are needed: a bent row crosses many. The next ones to come
  // cross about as many rows further down.
  constexpr int kStep = 16;
  constexpr int kRowsAhead = 6;
  const std::uint8_t* upper = plane.data;
  const std::uint8_t* lower = plane.data + plane.stride;
  const std::ptrdiff_t ahead = static_cast<std::ptrdiff_t>(kRowsAhead) * plane.stride;
  const std::ptrdiff_t lastRow = static_cast<std::ptrdiff_t>(plane.height - 1) * plane.stride;
  for (int begin = 0; begin < size; begin += kStep) {
    hwy::Prefetch(plane.data + std::min(block.offsets[static_cast<std::size_t>(begin)] + ahead, lastRow));
    const auto end = static_cast<std::size_t>(std::min(begin + kStep, size));
    for (auto i = static_cast<std::size_t>(begin); i < end; ++i) {
      const std::ptrdiff_t offset = block.offsets[i];
      block.upper[i] = pairAt(upper + offset);
      block.lower[i] = pairAt(lower + offset);
    }
  }
}

/// `size` is whole vectors of 32-bit numbers.
inline void blend(const PointBlock& block, std::uint8_t* HWY_RESTRICT out, int size) {
  const hn::ScalableTag<std::int32_t> d32;
  const hn::Rebind<std::uint16_t, decltype(d32)> d16;
  const hn::Rebind<std::uint8_t, decltype(d32)> d8;
  const int lanes = static_cast<int>(hn::Lanes(d32));
  const auto byte = hn::Set(d32, 255);
  const auto round = hn::Set(d32, 1 << 15);
  for (int i = 0; i < size; i += lanes) {
    const auto weightX = hn::Load(d32, block.weightsX.data() + i);
    const auto between = [&](const std::uint16_t* pairs) HWY_ATTR {
      const auto pair = hn::PromoteTo(d32, hn::Load(d16, pairs + i));
      const auto left = hn::And(pair, byte);
      const auto right = hn::ShiftRight<8>(pair);
      return hn::Add(hn::ShiftLeft<kSampleFractionBits>(left), hn::Mul(hn::Sub(right, left), weightX));
    };
    const auto top = between(block.upper.data());
    const auto bottom = between(block.lower.data());
    const auto sum = hn::Add(hn::Add(hn::ShiftLeft<kSampleFractionBits>(top), round),
                             hn::Mul(hn::Sub(bottom, top), hn::Load(d32, block.weightsY.data() + i)));
    hn::StoreU(hn::DemoteTo(d8, hn::ShiftRight<16>(sum)), d8, out + i);
  }
}

void sampleRow(const PlaneView& plane, const std::int32_t* HWY_RESTRICT x, const std::int32_t* HWY_RESTRICT y,
               std::uint8_t* HWY_RESTRICT out, int count) {
  const hn::ScalableTag<std::int32_t> d32;
  const int lanes = static_cast<int>(hn::Lanes(d32));
  const auto zero = hn::Zero(d32);
  const auto endX = hn::Set(d32, (plane.width - 1) << kSampleFractionBits);
  const auto endY = hn::Set(d32, (plane.height - 1) << kSampleFractionBits);
  const PointWriter<decltype(d32)> writer(plane);
  PointBlock block;
  const int whole = plane.width > 1 && plane.height > 1 ? count / lanes * lanes : 0;
  for (int begin = 0; begin < whole; begin += kBlock) {
    const int size = std::min(kBlock, whole - begin);
    for (int i = 0; i < size; i += lanes)
      writer.write(hn::Min(hn::Max(hn::LoadU(d32, x + begin + i), zero), endX),
                   hn::Min(hn::Max(hn::LoadU(d32, y + begin + i), zero), endY), block, i);
    lookUp(plane, block, size);
    blend(block, out + begin, size);
  }
  sampleScalar(plane, x + whole, y + whole, out + whole, count - whole);
}

/// The displacements of a block along one axis, already interpolated between the node rows above and below.
template <int kCellBits>
struct NodeBlock {
  // A vector of nodes may begin at any node, so the last ones are read past the end.
  static constexpr int kSpare = 32;
  HWY_ALIGN std::array<std::int32_t, (kBlock >> kCellBits) + 1 + kSpare> values{};

  void fill(const std::int32_t* HWY_RESTRICT upper, const std::int32_t* HWY_RESTRICT lower, int down,
            int count) {
    const hn::CappedTag<std::int32_t, 16> d;
    const auto upperWeight = hn::Set(d, (1 << kCellBits) - down);
    const auto lowerWeight = hn::Set(d, down);
    for (int i = 0; i < count; i += static_cast<int>(hn::Lanes(d)))
      hn::StoreU(hn::Add(hn::Mul(hn::LoadU(d, upper + i), upperWeight),
                         hn::Mul(hn::LoadU(d, lower + i), lowerWeight)),
                 d, values.data() + i);
  }
};

template <int kCellBits>
void sampleBent(const BentTarget* targets, int targetCount, int y, const BentRow& bent, int count) {
  constexpr int kInCell = (1 << kCellBits) - 1;
  const hn::ScalableTag<std::int32_t> d32;
  using V = hn::Vec<decltype(d32)>;
  const int lanes = static_cast<int>(hn::Lanes(d32));
  const PlaneView& plane = targets[0].plane;
  const int shift = bentShift(bent);
  const auto zero = hn::Zero(d32);
  const auto round = hn::Set(d32, 1 << shift >> 1);
  const auto endX = hn::Set(d32, (plane.width - 1) << kSampleFractionBits);
  const auto endY = hn::Set(d32, (plane.height - 1) << kSampleFractionBits);
  const auto line = hn::Set(d32, y << kSampleFractionBits);
  const auto lane = hn::Iota(d32, 0);
  // A vector may cover several cells, or a cell several vectors.
  const auto nodeOfLane = hn::IndicesFromVec(d32, hn::ShiftRight<kCellBits>(lane));
  const auto inFirstCell = hn::And(lane, hn::Set(d32, kInCell));
  const auto mirror = [&](V place, V end) HWY_ATTR {
    return hn::Max(hn::Sub(end, hn::Abs(hn::Sub(end, hn::Abs(place)))), zero);
  };
  const PointWriter<decltype(d32)> writer(plane);
  PointBlock block;
  HWY_ALIGN std::array<std::uint8_t, kBlock> last;
  NodeBlock<kCellBits> nodesX;
  NodeBlock<kCellBits> nodesY;
  for (int begin = 0; begin < count; begin += kBlock) {
    const int size = std::min(kBlock, count - begin);
    const int firstNode = begin >> kCellBits;
    const int nodes = ((size + kInCell) >> kCellBits) + 1;
    nodesX.fill(bent.upperX + firstNode, bent.lowerX + firstNode, bent.down, nodes);
    nodesY.fill(bent.upperY + firstNode, bent.lowerY + firstNode, bent.down, nodes);
    auto column = hn::ShiftLeft<kSampleFractionBits>(hn::Add(lane, hn::Set(d32, begin)));
    for (int i = 0; i < size; i += lanes) {
      const auto inCell = hn::Add(inFirstCell, hn::Set(d32, i & kInCell));
      const auto moved = [&](const NodeBlock<kCellBits>& sums) HWY_ATTR {
        const std::int32_t* node = sums.values.data() + (i >> kCellBits);
        const auto left = hn::TableLookupLanes(hn::LoadU(d32, node), nodeOfLane);
        const auto right = hn::TableLookupLanes(hn::LoadU(d32, node + 1), nodeOfLane);
        const auto sum = hn::Add(hn::ShiftLeft<kCellBits>(left), hn::Mul(hn::Sub(right, left), inCell));
        return hn::ShiftRightSame(hn::Add(sum, round), shift);
      };
      writer.write(mirror(hn::Add(column, moved(nodesX)), endX), mirror(hn::Add(line, moved(nodesY)), endY),
                   block, i);
      column = hn::Add(column, hn::Set(d32, lanes << kSampleFractionBits));
    }
    const int whole = (size + lanes - 1) / lanes * lanes;
    for (int target = 0; target < targetCount; ++target) {
      std::uint8_t* out = targets[target].out + begin;
      lookUp(targets[target].plane, block, whole);
      blend(block, whole == size ? out : last.data(), whole);
      if (whole != size)
        std::memcpy(out, last.data(), static_cast<std::size_t>(size));
    }
  }
}

void sampleBentRow(const BentTarget* targets, int targetCount, int y, const BentRow& bent, int count) {
  if (targets[0].plane.width < 2 || targets[0].plane.height < 2)
    sampleBentScalar(targets, targetCount, y, bent, count);
  else if (bent.cellBits == 2)
    sampleBent<2>(targets, targetCount, y, bent, count);
  else
    sampleBent<3>(targets, targetCount, y, bent, count);
}

#endif

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(sampleRow);
HWY_EXPORT(sampleBentRow);

void sampleRow(const PlaneView& plane, const std::int32_t* x, const std::int32_t* y, std::uint8_t* out,
               int count) {
  HWY_DYNAMIC_DISPATCH(sampleRow)(plane, x, y, out, count);
}

void sampleBentRow(const BentTarget* targets, int targetCount, int y, const BentRow& bent, int count) {
  HWY_DYNAMIC_DISPATCH(sampleBentRow)(targets, targetCount, y, bent, count);
}

}  // namespace korvia
#endif

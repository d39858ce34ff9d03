#include "ShrinkTable.h"

#include <algorithm>
#include <array>

namespace korvia {

namespace {

using Weights = std::array<int, ShrinkGroup::kTaps>;

std::uint16_t weightOf(int part, int whole) {
  return static_cast<std::uint16_t>((part * 256 + whole / 2) / whole);
}

}  // namespace

CoveredPart::CoveredPart(const RowPart& part, double length) {
  const int most = static_cast<int>(length * kOne);
  begin = static_cast<int>(std::clamp(part.begin * kOne + 0.5, 0.0, most - 1.0));
  end = std::max(begin + 1, static_cast<int>(std::min(part.end * kOne + 0.5, most + 0.0)));
}

int CoveredPart::of(int sample) const {
  const int left = sample << kBits;
  return std::max(0, std::min(end, left + kOne) - std::max(begin, left));
}

int fillShrinkGroups(double begin, double step, double length, int samples, int count, ShrinkGroup* groups) {
  constexpr int kLanes = ShrinkGroup::kLanes;
  int half = -1;
  int lane = kLanes;
  int offset = 0;
  for (int i = 0; i < count; ++i) {
    const CoveredPart part({begin + i * step, begin + (i + 1) * step}, length);
    const int base = std::min(part.first(), samples - ShrinkGroup::kTaps);
    Weights weights{};
    for (int sample = part.first(); sample <= part.last(); ++sample)
      weights[static_cast<std::size_t>(std::min(sample, samples - 1) - base)] += part.of(sample);

    if (lane == kLanes || base + ShrinkGroup::kTaps > offset + ShrinkGroup::kWindow) {
      ++half;
      lane = 0;
      offset = std::min(base, samples - ShrinkGroup::kWindow);
      if (half % ShrinkGroup::kHalves == 0)
        groups[half / ShrinkGroup::kHalves] = {};
    }
    ShrinkGroup& group = groups[half / ShrinkGroup::kHalves];
    const int side = half % ShrinkGroup::kHalves;
    const int place = side * kLanes + lane;
    group.offset[side] = offset;
    group.count[side] = ++lane;
    group.index[place] = static_cast<std::uint16_t>((base - offset) | ShrinkGroup::kZeroAbove);
    group.firstWeight[place] = weightOf(weights[0], part.length());
    group.lastWeight[place] = weightOf(weights[2], part.length());
  }
  return half / ShrinkGroup::kHalves + 1;
}

}  // namespace korvia

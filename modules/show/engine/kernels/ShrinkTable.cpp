#include "ShrinkTable.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace korvia {

namespace {

using Weights = std::array<int, ShrinkGroup::kTaps>;

std::uint16_t weightOf(int part, int whole) {
  return static_cast<std::uint16_t>((part * 256 + whole / 2) / whole);
}

}  // namespace

CoveredPart::CoveredPart(const RowPart& part, double length) {
  const long long most = std::llround(length * kOne);
  begin = static_cast<int>(std::clamp(std::llround(part.begin * kOne), 0LL, most - 1));
  end = static_cast<int>(std::clamp(std::llround(part.end * kOne), begin + 1LL, most));
}

int CoveredPart::of(int sample) const {
  const int left = sample << kBits;
  return std::max(0, std::min(end, left + kOne) - std::max(begin, left));
}

int fillShrinkGroups(double begin, double step, double length, int samples, int count, ShrinkGroup* groups) {
  int used = 0;
  ShrinkGroup* group = nullptr;
  for (int i = 0; i < count; ++i) {
    const CoveredPart part({begin + i * step, begin + (i + 1) * step}, length);
    const int base = std::min(part.first(), samples - ShrinkGroup::kTaps);
    Weights weights{};
    for (int sample = part.first(); sample <= part.last(); ++sample)
      weights[static_cast<std::size_t>(std::min(sample, samples - 1) - base)] += part.of(sample);

    if (!group || group->count == ShrinkGroup::kLanes ||
        base + ShrinkGroup::kTaps > group->offset + ShrinkGroup::kWindow) {
      group = &groups[used++];
      *group = {};
      group->offset = std::min(base, samples - ShrinkGroup::kWindow);
    }
    const int lane = group->count++;
    group->index[lane] = static_cast<std::uint8_t>(base - group->offset);
    group->firstWeight[lane] = weightOf(weights[0], part.length());
    group->lastWeight[lane] = weightOf(weights[2], part.length());
  }
  return used;
}

}  // namespace korvia

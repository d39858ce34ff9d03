#include "ColumnTable.h"

#include <algorithm>
#include <cmath>

namespace korvia {

ColumnTable::ColumnTable(int from, int to) : from_(from), to_(to), usable_(from >= kWindow) {
  const double step = static_cast<double>(from) / to;
  const int groups = (to + kGroup - 1) / kGroup;
  for (int g = 0; g < groups && usable_; ++g) {
    Group group;
    std::array<int, kGroup> lefts{};
    for (int i = 0; i < kGroup; ++i) {
      const int x = std::min(g * kGroup + i, to - 1);
      const double place = std::clamp((x + 0.5) * step - 0.5, 0.0, static_cast<double>(from - 1));
      const int left = static_cast<int>(place);
      lefts[i] = left;
      group.rightWeight[i] = static_cast<std::uint8_t>(std::lround((place - left) * (1 << kWeightBits)));
    }
    group.offset = std::min(lefts.front(), from - kWindow);
    for (int i = 0; i < kGroup; ++i) {
      const int right = std::min(lefts[i] + 1, from - 1);
      usable_ = usable_ && right - group.offset < kWindow;
      group.left[i] = static_cast<std::uint8_t>(lefts[i] - group.offset);
      group.right[i] = static_cast<std::uint8_t>(right - group.offset);
    }
    groups_.push_back(group);
  }
}

}  // namespace korvia

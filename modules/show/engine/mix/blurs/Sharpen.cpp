#include "Blurs.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/BlurKernels.h"
#include "engine/mix/Curves.h"
#include "engine/mix/fades/CrossFade.h"

namespace korvia {

void Sharpen::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                  Frame& out) const {
  constexpr double kLargestGain = 5;
  struct Range {
    int low;
    int high;
  };
  constexpr Range kLegal[] = {{16, 235}, {16, 240}, {16, 240}};
  const int gain256 =
      static_cast<int>(std::lround(256 * kLargestGain * smoothStep(triangleAt(point.position))));
  Frame& faded = scratch.frame(0, from.size());
  crossFade(from, to, hiddenFadeWeight(point.position), faded);
  for (const int plane : kOpaquePlanes) {
    const PlaneView source = planeOf(faded, plane);
    const WritablePlane target = writablePlaneOf(out, plane);
    // The spacing follows the height, so that the edges look the same in pictures of any size.
    const int spacing = std::max(1, static_cast<int>(std::lround(from.height() / 400.0 / stepOf(plane))));
    const auto width = static_cast<std::size_t>(target.width);
    const auto border = 2 * static_cast<std::size_t>(spacing);
    auto* columns = scratch.buffer<std::uint16_t>(0, width + 2 * border);
    for (int y = 0; y < target.height; ++y) {
      std::array<const std::uint8_t*, 5> rows;
      for (int i = 0; i < 5; ++i)
        rows[static_cast<std::size_t>(i)] =
            source.row(std::clamp(y + (i - 2) * spacing, 0, source.height - 1));
      binomialColumns(rows, columns + border, target.width);
      std::fill_n(columns, border, columns[border]);
      std::fill_n(columns + border + width, border, columns[border + width - 1]);
      sharpenRow(source.row(y), columns, spacing, gain256, kLegal[plane].low, kLegal[plane].high,
                 target.row(y), target.width);
    }
  }
}

}  // namespace korvia

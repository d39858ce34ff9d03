#include "Blurs.h"

#include <algorithm>
#include <cmath>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/BlurKernels.h"
#include "engine/kernels/RowKernels.h"
#include "engine/mix/Curves.h"

namespace korvia {

namespace {

enum Buffer { kBorderedRow, kSums };

}  // namespace

void DirectionalBlur::mix(const Frame& from, const Frame& to, const MixPoint& point,
                          TransitionScratch& scratch, Frame& out) const {
  // To each side, as a part of the picture's width.
  constexpr double kLargestRadius = 0.06;
  const double radius = kLargestRadius * from.width() * smoothStep(triangleAt(point.position));
  const int weight = hiddenFadeWeight(point.position);
  const auto borderMost = static_cast<std::size_t>(kLargestRadius * from.width()) + 2;
  const std::size_t bordered = static_cast<std::size_t>(from.width()) + 2 * borderMost;
  auto* sums = scratch.buffer<std::uint32_t>(kSums, bordered + 1);
  constexpr int kAlignment = 64;
  auto* borderedRow = scratch.buffer<std::uint8_t>(kBorderedRow, bordered + 2 * kAlignment);
  for (const int plane : kOpaquePlanes) {
    const PlaneView a = planeOf(from, plane);
    const PlaneView b = planeOf(to, plane);
    const WritablePlane target = writablePlaneOf(out, plane);
    const int radius256 = static_cast<int>(std::lround(256 * radius / stepOf(plane)));
    const int border = radius256 / 256 + 1;
    // mixRow() writes an unaligned row with ordinary stores. The row stays in the cache, from where boxRow()
    // reads it at once.
    const int unaligned = (border / kAlignment + 1) * kAlignment + 1;
    std::uint8_t* row = borderedRow + unaligned;
    for (int y = 0; y < target.height; ++y) {
      mixRow(a.row(y), b.row(y), weight, row, target.width);
      std::fill_n(row - border, border, row[0]);
      std::fill_n(row + target.width, border, row[target.width - 1]);
      boxRow(row - border, radius256, sums, target.row(y), target.width);
    }
  }
}

}  // namespace korvia

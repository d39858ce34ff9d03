#include "PictureScaler.h"

#include <libyuv.h>

#include <algorithm>

#include "engine/frame/RgbRow.h"
#include "engine/kernels/RowKernels.h"

namespace korvia {

namespace {

// Samples that the kernels may write past the end of a row.
constexpr int kRowSlack = 64;

/// The two source rows of row `y` and the weight of the second, in 1/256, when `from` rows become `to`.
struct RowPair {
  int first;
  int second;
  int weight;
};

RowPair rowPair(int y, int from, int to) {
  const double place = std::clamp((y + 0.5) * from / to - 0.5, 0.0, static_cast<double>(from - 1));
  const int first = static_cast<int>(place);
  return {first, std::min(first + 1, from - 1), static_cast<int>((place - first) * 256)};
}

}  // namespace

// Halving by a box filter is several times faster than an area filter. It leaves less than a factor of two
// for the bilinear step, which then does not alias.
PlaneView PictureScaler::halved(PlaneView plane, FrameSize size, Halves& halves) {
  for (std::vector<std::uint8_t>& half : halves) {
    const FrameSize next{plane.width / 2, plane.height / 2};
    if (next.width < size.width || next.height < size.height)
      break;
    half.resize(static_cast<std::size_t>(next.width) * next.height + kRowSlack);
    libyuv::ScalePlane(plane.data, plane.stride, next.width * 2, next.height * 2, half.data(), next.width,
                       next.width, next.height, libyuv::kFilterBox);
    plane = {half.data(), next.width, next.width, next.height};
  }
  return plane;
}

void PictureScaler::scaleRowOf(const PlaneView& plane, int y, FrameSize size, Row& row) {
  const RowPair rows = rowPair(y, plane.height, size.height);
  const std::uint8_t* first = plane.row(rows.first);
  const std::uint8_t* second = plane.row(rows.second);
  row.tall.resize(plane.width + kRowSlack);
  row.wide.resize(size.width + kRowSlack);
  libyuv::InterpolatePlane(first, 0, second, 0, row.tall.data(), 0, plane.width, 1, rows.weight);
  if (!row.columns.fits(plane.width, size.width))
    row.columns = ColumnTable(plane.width, size.width);
  if (row.columns.isUsable())
    scaleRow(row.tall.data(), row.columns, row.wide.data());
  else
    libyuv::ScalePlane(row.tall.data(), plane.width, plane.width, 1, row.wide.data(), size.width, size.width,
                       1, libyuv::kFilterBilinear);
}

void PictureScaler::toRgb(const Frame& picture, FrameSize size, std::uint8_t* pixels, int stride) {
  if (size.isEmpty())
    return;
  PlaneView planes[3];
  for (int i = 0; i < 3; ++i)
    planes[i] = halved(planeOf(picture, i), size, halves_[i]);
  for (int y = 0; y < size.height; ++y) {
    // Chroma is scaled to the full size in one step, which keeps more of it than an intermediate step at
    // half the size.
    for (int i = 0; i < 3; ++i)
      scaleRowOf(planes[i], y, size, rows_[i]);
    rowToRgb(rows_[0].wide.data(), rows_[1].wide.data(), rows_[2].wide.data(),
             reinterpret_cast<std::uint32_t*>(pixels + static_cast<std::ptrdiff_t>(y) * stride), size.width);
  }
}

MonitorRect monitorRect(FrameSize picture, FrameSize window) {
  MonitorRect rect;
  if (picture.isEmpty() || window.isEmpty())
    return rect;
  const std::int64_t byWidth = static_cast<std::int64_t>(window.width) * picture.height;
  const std::int64_t byHeight = static_cast<std::int64_t>(window.height) * picture.width;
  if (byWidth <= byHeight)
    rect.size = {window.width, static_cast<int>(std::max<std::int64_t>(1, byWidth / picture.width))};
  else
    rect.size = {static_cast<int>(std::max<std::int64_t>(1, byHeight / picture.height)), window.height};
  rect.x = (window.width - rect.size.width) / 2;
  rect.y = (window.height - rect.size.height) / 2;
  return rect;
}

}  // namespace korvia

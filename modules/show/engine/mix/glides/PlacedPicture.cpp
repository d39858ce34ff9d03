#include "PlacedPicture.h"

#include <cstring>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/AreaKernels.h"
#include "engine/kernels/RowKernels.h"
#include "engine/mix/glides/PlacedPlane.h"

namespace korvia {

namespace {

constexpr int kWhole = PlacedSide::kWhole;
// Places in the scratch.
constexpr int kFrontPlace = 0;
constexpr int kBehindPlace = kFrontPlace + PlacedPlane::kScratchPlaces;
constexpr int kLinePlace = kBehindPlace + PlacedPlane::kScratchPlaces;

void copyColumns(const PlacedPlane& plane, const std::uint8_t* row, int begin, int end, std::uint8_t* out) {
  if (begin < end)
    std::memcpy(out + begin, row + (begin - plane.touchedColumns().begin),
                static_cast<std::size_t>(end - begin));
}

std::uint8_t blended(int behind, int front, int frontCover) {
  return static_cast<std::uint8_t>((behind * (kWhole - frontCover) + front * frontCover + kWhole / 2) /
                                   kWhole);
}

/// A row with the columns of `front` over those behind it, as if `front` covered the full height of the row.
/// The result may be in `line`.
const std::uint8_t* composedRow(PlacedPlane& front, PlacedPlane& behind, int y, int width,
                                std::uint8_t* line) {
  const auto [begin, end] = front.columns().whole(width);
  const std::uint8_t* frontRow = front.row(y);
  if (begin == 0 && end == width)
    return frontRow;
  const std::uint8_t* behindRow = behind.row(y);
  copyColumns(behind, behindRow, 0, begin, line);
  copyColumns(front, frontRow, begin, end, line);
  copyColumns(behind, behindRow, end, width, line);
  for (const int x : {begin - 1, end}) {
    const int cover = x >= 0 && x < width ? front.columns().cover(x) : 0;
    if (cover > 0)
      line[x] = blended(behindRow[x - behind.touchedColumns().begin],
                        frontRow[x - front.touchedColumns().begin], cover);
  }
  return line;
}

void placePlane(PlacedPlane& front, PlacedPlane& behind, std::uint8_t* line, const WritablePlane& out) {
  const bool frontShows = front.touchedColumns().begin < front.touchedColumns().end;
  for (int y = 0; y < out.height; ++y) {
    const int cover = frontShows ? front.rows().cover(y) : 0;
    if (cover == 0) {
      copyRowNonTemporal(behind.row(y), out.row(y), out.width);
      continue;
    }
    const std::uint8_t* row = composedRow(front, behind, y, out.width, line);
    if (cover < kWhole) {
      const std::uint8_t* rows[] = {behind.row(y), row};
      const std::uint16_t weights[] = {static_cast<std::uint16_t>(kWhole - cover),
                                       static_cast<std::uint16_t>(cover)};
      averageRows(rows, weights, 2, line, out.width);
      row = line;
    }
    copyRowNonTemporal(row, out.row(y), out.width);
  }
}

PlacedPlane placed(const Frame& frame, int plane, const Placement& place, TransitionScratch& scratch,
                   int scratchPlace) {
  const int scale = 2 / stepOf(plane);
  static_assert(Placement::kSteps * 2 == kWhole);
  const PlacedSide columns{place.x * scale, place.width * scale, frame.size().chromaWidth() * scale};
  const PlacedSide rows{place.y * scale, place.height * scale, frame.size().chromaHeight() * scale};
  return {planeOf(frame, plane), columns, rows, scratch, scratchPlace};
}

}  // namespace

Placement wholeFrame(FrameSize size) {
  return {0, 0, size.chromaWidth() * 2 * Placement::kSteps, size.chromaHeight() * 2 * Placement::kSteps};
}

void placePictures(const Frame& front, const Placement& frontPlace, const Frame& behind,
                   const Placement& behindPlace, TransitionScratch& scratch, Frame& out) {
  auto* line = scratch.buffer<std::uint8_t>(kLinePlace, static_cast<std::size_t>(out.width()));
  for (const int plane : kOpaquePlanes) {
    PlacedPlane frontPlane = placed(front, plane, frontPlace, scratch, kFrontPlace);
    PlacedPlane behindPlane = placed(behind, plane, behindPlace, scratch, kBehindPlace);
    placePlane(frontPlane, behindPlane, line, writablePlaneOf(out, plane));
  }
}

}  // namespace korvia

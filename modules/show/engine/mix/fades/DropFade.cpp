#include "DropFade.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/FetchAhead.h"
#include "engine/kernels/RowKernels.h"
#include "engine/mix/Curves.h"

namespace korvia {

namespace {

// In half diagonals of the picture.
constexpr double kFrontBreadth = 0.75;
constexpr double kWaveLength = 0.2;
constexpr double kDelay = 0.08;
constexpr double kLight = 0.16;
// Number of steps of a distance: finer than the samples of a large picture.
constexpr int kSteps = 2048;

constexpr int kRowsAhead = 2;

// Places in the scratch.
constexpr int kMaskRow = 0;
constexpr int kLightRow = 1;

/// The upper left quarter of a plane with its middle row and column; the other quarters mirror it.
struct Quarter {
  explicit Quarter(int planeWidth, int planeHeight)
      : width((planeWidth + 1) / 2), height((planeHeight + 1) / 2) {}
  int width;
  int height;
  std::size_t count() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
};

/// Writes for each sample of the quarter its distance from the centre of the plane in steps; the corners
/// have the last step.
void fillDistances(int planeWidth, int planeHeight, std::uint16_t* steps) {
  const Quarter quarter(planeWidth, planeHeight);
  const double scale = (kSteps - 1) / std::hypot(planeWidth / 2.0, planeHeight / 2.0);
  for (int y = 0; y < quarter.height; ++y)
    for (int x = 0; x < quarter.width; ++x)
      *steps++ = static_cast<std::uint16_t>(
          std::lround(scale * std::hypot(x + 0.5 - planeWidth / 2.0, y + 0.5 - planeHeight / 2.0)));
}

/// The drop at one position of the take, as tables over the steps of distance.
struct DropTable {
  explicit DropTable(double position) {
    for (int step = 0; step < kSteps; ++step) {
      const DropPoint point = dropPointAt(step / (kSteps - 1.0), position);
      mask[step] = static_cast<std::uint8_t>(std::lround(255 * point.weight));
      light[step] = static_cast<std::int8_t>(std::lround(128 * point.light));
    }
  }
  std::uint8_t mask[kSteps];
  std::int8_t light[kSteps];
};

/// Writes a row of values by distance, mirrored at its middle.
template <typename T>
void fillRow(const std::uint16_t* steps, const T* values, int width, T* row) {
  for (int left = 0, right = width - 1; left <= right; ++left, --right)
    row[left] = row[right] = values[steps[left]];
}

void mixPlane(const PlaneView& a, const PlaneView& b, const std::uint16_t* steps, const DropTable& table,
              bool lit, TransitionScratch& scratch, const WritablePlane& out) {
  const Quarter quarter(out.width, out.height);
  const auto width = static_cast<std::size_t>(out.width);
  auto* mask = scratch.buffer<std::uint8_t>(kMaskRow, width);
  auto* light = scratch.buffer<std::int8_t>(kLightRow, width);
  const auto mixRows = [&](int y) {
    if (lit)
      mixMaskedLitRow(a.row(y), b.row(y), mask, light, out.row(y), out.width);
    else
      mixMaskedRow(a.row(y), b.row(y), mask, out.row(y), out.width);
  };
  for (int y = 0; y < quarter.height; ++y, steps += quarter.width) {
    fillRow(steps, table.mask, out.width, mask);
    if (lit)
      fillRow(steps, table.light, out.width, light);
    const int next = y + kRowsAhead < quarter.height ? y + kRowsAhead : y;
    for (const int row : {next, out.height - 1 - next}) {
      fetchAhead(a.row(row), out.width);
      fetchAhead(b.row(row), out.width);
    }
    mixRows(y);
    if (const int mirrored = out.height - 1 - y; mirrored != y)
      mixRows(mirrored);
  }
}

}  // namespace

DropPoint dropPointAt(double distance, double position) {
  const double behindFront = position * (1 + kFrontBreadth) - distance;
  const double time = std::clamp(behindFront / kFrontBreadth, 0.0, 1.0);
  if (time == 0 || time == 1)
    return {time, 0};
  const double height = 4 * time * (1 - time);
  const double phase = 2 * std::numbers::pi * behindFront / kWaveLength;
  const double weight = smoothStep(time) + kDelay * height * std::sin(phase);
  return {std::clamp(weight, 0.0, 1.0), kLight * height * std::cos(phase)};
}

void DropFade::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                   Frame& out) const {
  const FrameSize size = out.size();
  const std::size_t lumaCount = Quarter(size.width, size.height).count();
  const std::size_t chromaCount = Quarter(size.chromaWidth(), size.chromaHeight()).count();
  const auto* steps =
      scratch.table<std::uint16_t>(this, size, 0, lumaCount + chromaCount, [&](std::uint16_t* values) {
        fillDistances(size.width, size.height, values);
        fillDistances(size.chromaWidth(), size.chromaHeight(), values + lumaCount);
      });
  const DropTable table(point.position);
  for (const int plane : kOpaquePlanes) {
    mixPlane(planeOf(from, plane), planeOf(to, plane), stepOf(plane) == 1 ? steps : steps + lumaCount, table,
             plane == Frame::Y, scratch, writablePlaneOf(out, plane));
  }
}

}  // namespace korvia

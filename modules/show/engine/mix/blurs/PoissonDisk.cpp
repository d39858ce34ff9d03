#include "PoissonDisk.h"

#include <algorithm>
#include <cmath>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/BlurKernels.h"

namespace korvia {

namespace {

constexpr int kFractionBits = 4;

/// Offset of a tap from its sample, in 1/16 sample.
struct Offset {
  int x;
  int y;
};
using Offsets = std::array<Offset, kTapCount>;

Offsets offsetsFor(double radius) {
  const std::array<PlanePoint, kTapCount / 2>& half = poissonHalfDisk();
  Offsets offsets;
  for (std::size_t i = 0; i < half.size(); ++i) {
    const int x = static_cast<int>(std::lround(half[i].x * radius * (1 << kFractionBits)));
    const int y = static_cast<int>(std::lround(half[i].y * radius * (1 << kFractionBits)));
    offsets[i] = {x, y};
    offsets[half.size() + i] = {-x, -y};
  }
  return offsets;
}

/// Samples that a disk reads past each edge of a plane.
int borderFor(double radius) {
  return static_cast<int>(std::ceil(radius)) + 2;
}

std::size_t borderedCount(const PlaneView& plane, int border) {
  const std::size_t both = 2 * static_cast<std::size_t>(border);
  return (static_cast<std::size_t>(plane.width) + both) * (static_cast<std::size_t>(plane.height) + both);
}

/// The plane with a border of repeated edge samples on each side.
PlaneView bordered(const PlaneView& plane, int border, std::uint8_t* data) {
  const int width = plane.width + 2 * border;
  const int height = plane.height + 2 * border;
  for (int y = 0; y < height; ++y) {
    const std::uint8_t* row = plane.row(std::clamp(y - border, 0, plane.height - 1));
    std::uint8_t* out = data + static_cast<std::ptrdiff_t>(y) * width;
    std::fill_n(out, border, row[0]);
    std::copy_n(row, plane.width, out + border);
    std::fill_n(out + border + plane.width, border, row[plane.width - 1]);
  }
  return {data, width, width, height};
}

}  // namespace

const std::array<PlanePoint, 32>& poissonHalfDisk() {
  static constexpr std::array<PlanePoint, kTapCount / 2> kHalf{
      {{-0.435, 0.072},  {-0.218, 0.155},  {0.361, -0.797},  {-0.463, -0.409}, {0.894, 0.003},
       {0.654, 0.011},   {0.295, -0.556},  {0.312, 0.550},   {0.207, 0.305},   {0.542, -0.703},
       {0.415, 0.166},   {0.852, -0.188},  {0.685, 0.540},   {0.551, 0.677},   {0.070, 0.472},
       {-0.098, 0.654},  {-0.810, -0.391}, {0.803, -0.383},  {0.114, -0.369},  {-0.002, -0.137},
       {-0.205, -0.061}, {0.026, 0.885},   {0.228, 0.877},   {0.512, -0.469},  {0.860, 0.196},
       {0.703, -0.557},  {0.629, 0.254},   {-0.397, -0.786}, {-0.140, -0.683}, {-0.362, 0.314},
       {0.175, -0.878},  {0.608, -0.244}}};
  return kHalf;
}

void blurByDisk(const Frame& picture, double radius, TransitionScratch& scratch, Frame& out) {
  const double largest = std::max(radius, kLargestDisk * picture.height());
  auto* data = scratch.buffer<std::uint8_t>(2, borderedCount(planeOf(picture, Frame::Y), borderFor(largest)));
  for (const int plane : kOpaquePlanes) {
    const double planeRadius = radius / stepOf(plane);
    const Offsets offsets = offsetsFor(planeRadius);
    const int border = borderFor(planeRadius);
    const PlaneView source = bordered(planeOf(picture, plane), border, data);
    const WritablePlane target = writablePlaneOf(out, plane);
    std::array<RowTap, kTapCount> taps;
    for (int y = 0; y < target.height; ++y) {
      for (std::size_t i = 0; i < taps.size(); ++i) {
        const Offset& offset = offsets[i];
        const std::uint8_t* upper =
            source.row(y + border + (offset.y >> kFractionBits)) + border + (offset.x >> kFractionBits);
        constexpr int kFraction = (1 << kFractionBits) - 1;
        taps[i] = {upper, upper + source.stride, static_cast<std::uint16_t>(offset.x & kFraction),
                   static_cast<std::uint16_t>(offset.y & kFraction)};
      }
      averageTapsRow(taps, target.row(y), target.width);
    }
  }
}

}  // namespace korvia

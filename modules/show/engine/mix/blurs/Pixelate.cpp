#include "Blurs.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/BlurKernels.h"
#include "engine/kernels/RowKernels.h"
#include "engine/mix/Curves.h"
#include "engine/mix/blurs/SmallPicture.h"

namespace korvia {

namespace {

/// Places in the scratch's buffers.
enum Place { kFaded, kColumns, kUpper, kLower, kCoarse, kRow, kMask };

/// The blocks at a position.
struct Blocks {
  /// Side of the smaller blocks in luma samples, a power of two; the larger ones have twice that side.
  int fine = 1;
  /// Weight of the larger blocks, 0 to 256.
  int coarseWeight = 0;
};

Blocks blocksAt(double position, int height) {
  constexpr double kRowsInTheMiddle = 17;
  constexpr int kMostDoublings = 7;
  // An exponent above 1, so that the small sizes pass fast and the large ones stay longer.
  constexpr double kExponent = 1.9;
  const int doublings =
      std::clamp(static_cast<int>(std::lround(std::log2(height / kRowsInTheMiddle))), 1, kMostDoublings);
  const double depth = doublings * (1 - std::pow(1 - triangleAt(position), kExponent));
  const int whole = std::min(static_cast<int>(depth), doublings - 1);
  return {1 << whole, static_cast<int>(std::lround(256 * smoothStep((depth - whole - 0.2) / 0.6)))};
}

/// Draws one plane.
class BlockPainter {
 public:
  BlockPainter(const PlaneView& from, const PlaneView& to, int weight, TransitionScratch& scratch)
      : from_(from), to_(to), weight_(weight) {
    const auto width = static_cast<std::size_t>(from.width);
    faded_ = scratch.buffer<std::uint8_t>(kFaded, width + 1);
    columns_ = scratch.buffer<std::uint16_t>(kColumns, width);
    upper_ = scratch.buffer<std::int32_t>(kUpper, width + 1);
    lower_ = scratch.buffer<std::int32_t>(kLower, width + 1);
    coarse_ = scratch.buffer<std::int32_t>(kCoarse, width);
    row_ = scratch.buffer<std::uint8_t>(kRow, width);
    mask_ = scratch.buffer<std::uint8_t>(kMask, width);
  }

  void paintPlain(const WritablePlane& out) const {
    for (int y = 0; y < out.height; ++y)
      mixRow(from_.row(y), to_.row(y), weight_, out.row(y), out.width);
  }

  /// Draws the fade mixed with blocks of two samples, `blockWeight` 0 to 256.
  void paintSmallest(int blockWeight, const WritablePlane& out) {
    constexpr int kSide = 2;
    std::fill_n(mask_, out.width, static_cast<std::uint8_t>((blockWeight * 255 + 128) / 256));
    for (int top = 0; top < out.height; top += kSide) {
      const int bottom = std::min(top + kSide, out.height);
      sumUp(top, bottom, kSide, upper_);
      toMeans(upper_, kSide, bottom - top);
      for (int x = 0; x < out.width; ++x)
        row_[x] = static_cast<std::uint8_t>(upper_[x / kSide]);
      for (int y = top; y < bottom; ++y)
        softenRow(from_.row(y), to_.row(y), weight_, row_, mask_, out.row(y), out.width);
    }
  }

  /// Draws blocks of `side` samples mixed with blocks of twice that side, `coarseWeight` 0 to 256.
  void paint(int side, int coarseWeight, const WritablePlane& out) {
    const int count = (out.width + side - 1) / side;
    for (int top = 0; top < out.height; top += 2 * side) {
      const int middle = std::min(top + side, out.height);
      const int bottom = std::min(middle + side, out.height);
      sumUp(top, middle, side, upper_);
      sumUp(middle, bottom, side, lower_);
      upper_[count] = lower_[count] = 0;
      for (int i = 0; i < count; i += 2)
        coarse_[i / 2] = upper_[i] + upper_[i + 1] + lower_[i] + lower_[i + 1];
      toMeans(coarse_, 2 * side, bottom - top);
      paintBand(upper_, side, coarseWeight, top, middle, out);
      paintBand(lower_, side, coarseWeight, middle, bottom, out);
    }
  }

 private:
  PlaneView from_;
  PlaneView to_;
  int weight_;
  std::uint8_t* faded_;
  std::uint16_t* columns_;
  std::int32_t* upper_;
  std::int32_t* lower_;
  std::int32_t* coarse_;
  std::uint8_t* row_;
  std::uint8_t* mask_;

  const std::uint8_t* fadedRow(int y) {
    if (weight_ == 0 || weight_ == 256)
      return weight_ == 0 ? from_.row(y) : to_.row(y);
    // mixRow() writes an unaligned row with ordinary stores. The row stays in the cache, from where it is
    // read at once.
    mixRow(from_.row(y), to_.row(y), weight_, faded_ + 1, from_.width);
    return faded_ + 1;
  }

  /// The sums of the blocks in the rows from `top` to before `bottom`.
  void sumUp(int top, int bottom, int side, std::int32_t* sums) {
    std::fill_n(columns_, from_.width, std::uint16_t{0});
    for (int y = top; y < bottom; ++y)
      addRow(fadedRow(y), columns_, from_.width);
    const int whole = from_.width / side;
    for (int i = 0; i < whole; ++i)
      sums[i] = std::accumulate(columns_ + i * side, columns_ + (i + 1) * side, 0);
    if (whole * side < from_.width)
      sums[whole] = std::accumulate(columns_ + whole * side, columns_ + from_.width, 0);
  }

  /// Divides the sums of blocks of `rows` rows by their number of samples.
  void toMeans(std::int32_t* sums, int side, int rows) const {
    const int whole = from_.width / side;
    const int half = side * rows / 2;
    const float scale = 1.0F / static_cast<float>(side * rows);
    for (int i = 0; i < whole; ++i)
      sums[i] = static_cast<std::int32_t>(static_cast<float>(sums[i] + half) * scale);
    const int rest = (from_.width - whole * side) * rows;
    if (rest > 0)
      sums[whole] = (sums[whole] + rest / 2) / rest;
  }

  void paintBand(std::int32_t* blocks, int side, int coarseWeight, int top, int bottom,
                 const WritablePlane& out) {
    if (top == bottom)
      return;
    toMeans(blocks, side, bottom - top);
    for (int x = 0, i = 0; x < out.width; x += side, ++i) {
      const int value = blocks[i] * (256 - coarseWeight) + coarse_[i / 2] * coarseWeight + 128;
      std::fill(row_ + x, row_ + std::min(x + side, out.width), static_cast<std::uint8_t>(value >> 8));
    }
    for (int y = top; y < bottom; ++y)
      std::copy_n(row_, out.width, out.row(y));
  }
};

}  // namespace

void Pixelate::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                   Frame& out) const {
  const int weight = hiddenFadeWeight(point.position);
  const Blocks blocks = blocksAt(point.position, from.height());
  for (const int plane : kOpaquePlanes) {
    const WritablePlane target = writablePlaneOf(out, plane);
    BlockPainter painter(planeOf(from, plane), planeOf(to, plane), weight, scratch);
    // Blocks of two luma samples are single samples of chroma.
    const int fine = blocks.fine / stepOf(plane);
    if (fine > 1)
      painter.paint(fine, blocks.coarseWeight, target);
    else if (fine == 1)
      painter.paintSmallest(blocks.coarseWeight, target);
    else
      painter.paintPlain(target);
  }
}

}  // namespace korvia

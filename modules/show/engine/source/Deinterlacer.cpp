#include "Deinterlacer.h"

#include <algorithm>
#include <cstring>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/FieldKernels.h"

namespace korvia {

namespace {

// A block counts as progressive-segmented from this sureness on. Each moving picture that looks like it adds
// one.
constexpr int kSureAfter = 3;
constexpr int kSurest = 6;
// An average movement of a sample below this is noise.
constexpr std::uint32_t kLeastMovement = 2;

/// The first line of the second field.
int secondFieldBegin(FirstField first) {
  return first == FirstField::Top ? 1 : 0;
}

FieldLines linesAt(const PlaneView& picture, const PlaneView& before, int y) {
  const int above = y > 0 ? y - 1 : std::min(y + 1, picture.height - 1);
  const int below = y + 1 < picture.height ? y + 1 : above;
  return {picture.row(y), picture.row(above), picture.row(below),
          before.row(y),  before.row(above),  before.row(below)};
}

}  // namespace

void Deinterlacer::judgeBlock(int column, int row, const Frame& picture, const Frame& before,
                              FirstField first) {
  const PlaneView now = planeOf(picture, Frame::Y);
  const PlaneView then = planeOf(before, Frame::Y);
  const int left = column * kBlock;
  const int width = std::min(kBlock, now.width - left);
  const int bottom = std::min((row + 1) * kBlock, now.height);
  CombSums sums;
  std::uint32_t samples = 0;
  for (int y = row * kBlock + secondFieldBegin(first); y < bottom; y += 2) {
    addCombSums(linesAt(now, then, y), left, width, sums);
    samples += static_cast<std::uint32_t>(width);
  }
  if (sums.moved < samples * kLeastMovement)
    return;
  // In interlaced material the first field is as far in time from the second field before it as from the
  // second field after it. In progressive-segmented material it was shot together with the second field after
  // it.
  std::uint8_t& sureness = segmented_[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
                                      static_cast<std::size_t>(column)];
  if (2 * sums.before >= 3 * sums.now)
    sureness = static_cast<std::uint8_t>(std::min(sureness + 1, kSurest));
  else if (4 * sums.before < 5 * sums.now)
    sureness = 0;
  else if (sureness > 0)
    --sureness;
}

void Deinterlacer::judgeBlocks(const Frame& picture, const Frame& before, FirstField first) {
  const int rows = (picture.height() + kBlock - 1) / kBlock;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns_; ++column)
      judgeBlock(column, row, picture, before, first);
  }
}

void Deinterlacer::makePlane(int plane, const Frame& picture, FirstField first, Frame& to) {
  const PlaneView now = planeOf(picture, plane);
  // The first picture is compared with zeros, so that all of it counts as moving.
  const PlaneView then =
      before_ ? planeOf(*before_, plane) : PlaneView{zeros_.data(), 0, now.width, now.height};
  const WritablePlane out = writablePlaneOf(to, plane);
  const auto bytes = static_cast<std::size_t>(now.width);
  const int block = kBlock / stepOf(plane);
  for (int y = 1 - secondFieldBegin(first); y < now.height; y += 2)
    std::memcpy(out.row(y), now.row(y), bytes);
  for (int y = secondFieldBegin(first); y < now.height; y += 2) {
    const FieldLines lines = linesAt(now, then, y);
    const std::uint8_t* segmented = segmented_.data() + static_cast<std::ptrdiff_t>(y / block) * columns_;
    for (int x = 0; x < now.width;) {
      // Neighbouring blocks that are treated the same way are done in one call.
      const bool keep = segmented[x / block] >= kSureAfter;
      int end = x;
      while (end < now.width && (segmented[end / block] >= kSureAfter) == keep)
        end = std::min(now.width, (end / block + 1) * block);
      if (keep)
        std::memcpy(out.row(y) + x, now.row(y) + x, static_cast<std::size_t>(end - x));
      else
        joinField(lines, x, end, now.width, out.row(y));
      x = end;
    }
  }
}

void Deinterlacer::process(const FrameRef& picture, FirstField first, Frame& to) {
  if (size_ != picture->size()) {
    size_ = picture->size();
    columns_ = (size_.width + kBlock - 1) / kBlock;
    segmented_.assign(
        static_cast<std::size_t>(columns_) * static_cast<std::size_t>((size_.height + kBlock - 1) / kBlock),
        0);
    zeros_.assign(static_cast<std::size_t>(size_.width), 0);
  }
  if (before_ && before_->size() != size_)
    before_.reset();
  if (before_)
    judgeBlocks(*picture, *before_, first);
  for (int plane = Frame::Y; plane <= (to.hasAlpha() ? Frame::A : Frame::V); ++plane)
    makePlane(plane, *picture, first, to);
  before_ = picture;
}

}  // namespace korvia

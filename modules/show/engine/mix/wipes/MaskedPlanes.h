// Mixes two frames under a mask, row by row: what is all of one picture is copied, only the rest is mixed.
// Engine thread.
#pragma once
#include <array>
#include <cstdint>

#include "engine/frame/PlaneView.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

/// The samples of the planes that share a mask, luma alone or the two of chroma, as places in the
/// picture.
struct PlaneGrid {
  PlaneGrid(FrameSize picture, bool chroma)
      : size(picture),
        step(chroma ? 2 : 1),
        width(chroma ? picture.chromaWidth() : picture.width),
        height(chroma ? picture.chromaHeight() : picture.height) {}

  /// Centre of a sample in luma samples.
  double x(int column) const { return (column + 0.5) * step; }
  double y(int row) const { return (row + 0.5) * step; }

  FrameSize size;
  int step;
  int width;
  int height;
};

class MaskedPlanes {
 public:
  /// The scratch's buffers from here on are taken; masks have those before.
  static constexpr int kFirstBuffer = TransitionScratch::kBufferCount - 2;

  MaskedPlanes(const Frame& from, const Frame& to, bool chroma, TransitionScratch& scratch, Frame& out);

  /// `mask` has a value for each sample of the row, 0 for `from` to 255 for `to`; null: the last one's.
  void mixRow(int y, const std::uint8_t* mask);

 private:
  /// Blocks of one kind, from a sample to before another.
  struct Run {
    int begin = 0;
    int end = 0;
    std::uint8_t kind = 0;
  };
  struct Planes {
    PlaneView from;
    PlaneView to;
    WritablePlane out;
  };

  void findRuns();

  std::array<Planes, 2> planes_;
  int planeCount_ = 0;
  int width_ = 0;
  const std::uint8_t* mask_ = nullptr;
  std::uint8_t* kinds_ = nullptr;
  Run* runs_ = nullptr;
  int runCount_ = 0;
};

/// Draws a whole frame. `maskFor(grid)` makes an object whose `row(y)`, asked for each row in turn, is its
/// mask or null where that is the last row's.
template <typename MaskFor>
void mixByMask(const Frame& from, const Frame& to, TransitionScratch& scratch, Frame& out, MaskFor maskFor) {
  for (const bool chroma : {false, true}) {
    const PlaneGrid grid(out.size(), chroma);
    MaskedPlanes planes(from, to, chroma, scratch, out);
    auto mask = maskFor(grid);
    for (int y = 0; y < grid.height; ++y)
      planes.mixRow(y, mask.row(y));
  }
}

}  // namespace korvia

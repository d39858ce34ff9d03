// Mixes two frames by a mask, row by row. Runs in which the mask is all 0 or all 255 are copied, the others
// mixed. Engine thread.
#pragma once
#include <array>
#include <cstdint>

#include "engine/frame/PlaneView.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

/// Planes that have the same size and share a mask.
enum class PlaneGroup { Luma, Chroma };

/// The coordinates of the samples of these planes in the picture.
struct PlaneGrid {
  PlaneGrid(FrameSize picture, PlaneGroup group)
      : size(picture),
        step(group == PlaneGroup::Chroma ? 2 : 1),
        width(group == PlaneGroup::Chroma ? picture.chromaWidth() : picture.width),
        height(group == PlaneGroup::Chroma ? picture.chromaHeight() : picture.height) {}

  /// The centre of a sample, in luma samples.
  double x(int column) const { return (column + 0.5) * step; }
  double y(int row) const { return (row + 0.5) * step; }

  FrameSize size;
  int step;
  int width;
  int height;
};

class MaskedPlanes {
 public:
  /// The first of the two buffers of the scratch that this class uses; masks may use those below.
  static constexpr int kFirstBuffer = TransitionScratch::kBufferCount - 2;

  MaskedPlanes(const Frame& from, const Frame& to, PlaneGroup group, TransitionScratch& scratch, Frame& out);

  /// `mask` has a value for each sample of the row, from 0 for `from` to 255 for `to`. Null repeats the last
  /// mask.
  void mixRow(int y, const std::uint8_t* mask);

 private:
  /// A run of blocks of one kind: samples from `begin` up to, not including, `end`.
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

/// Mixes a whole frame. `maskFor(grid)` makes an object whose `row(y)` is called for each row in turn and
/// returns its mask, or null for the same mask as in the last row.
template <typename MaskFor>
void mixByMask(const Frame& from, const Frame& to, TransitionScratch& scratch, Frame& out, MaskFor maskFor) {
  for (const PlaneGroup group : {PlaneGroup::Luma, PlaneGroup::Chroma}) {
    const PlaneGrid grid(out.size(), group);
    MaskedPlanes planes(from, to, group, scratch, out);
    auto mask = maskFor(grid);
    for (int y = 0; y < grid.height; ++y)
      planes.mixRow(y, mask.row(y));
  }
}

}  // namespace korvia

// Makes one progressive picture of each interlaced one. The first field in time is kept as it is. A line of
// the other field is kept where nothing moved since the picture before, where both fields were shot at once
// (progressive-segmented material, found block by block), and where it lies between its neighbours; elsewhere
// it is interpolated along edges. GStreamer's deinterlacers, yadif too, take still one-line detail for
// combing and lose it. One thread at a time.
#pragma once
#include <cstdint>
#include <vector>

#include "engine/frame/Frame.h"

namespace korvia {

enum class FirstField { Top, Bottom };

class Deinterlacer {
 public:
  /// Fills `to`, of the picture's size. Pictures come in order; one of another size begins anew. The planes
  /// of `picture` that `to` has are made.
  void process(const FrameRef& picture, FirstField first, Frame& to);
  /// A progressive picture of the same film passed.
  void skip(const FrameRef& picture) { before_ = picture; }

 private:
  static constexpr int kBlock = 32;  // luma samples a side

  void judgeBlocks(const Frame& picture, const Frame& before, FirstField first);
  void judgeBlock(int column, int row, const Frame& picture, const Frame& before, FirstField first);
  void makePlane(int plane, const Frame& picture, FirstField first, Frame& to);

  FrameRef before_;
  FrameSize size_;
  int columns_ = 0;
  // How often in a row the block moved like progressive-segmented material.
  std::vector<std::uint8_t> segmented_;
  std::vector<std::uint8_t> zeros_;
};

}  // namespace korvia

// Makes one progressive picture of each interlaced one. The field that was shot first is kept. A line of the
// other field is kept in three cases: nothing has moved since the picture before; both fields were shot at
// once, which is detected block by block (progressive-segmented material); its samples lie between those of
// the lines above and below. Elsewhere the line is interpolated along edges. GStreamer's deinterlacers, yadif
// included, take still one-line detail for combing and lose it. One thread at a time.
#pragma once
#include <cstdint>
#include <vector>

#include "engine/frame/Frame.h"

namespace korvia {

enum class FirstField { Top, Bottom };

class Deinterlacer {
 public:
  /// Fills all planes of `to`, which has the size of `picture` and no more planes than it. Pictures come in
  /// order; one of another size starts anew.
  void process(const FrameRef& picture, FirstField first, Frame& to);
  /// Takes a progressive picture that stands between interlaced ones: the next one is compared with it.
  void skip(const FrameRef& picture) { before_ = picture; }

 private:
  static constexpr int kBlock = 32;  // luma samples a side

  void judgeBlocks(const Frame& picture, const Frame& before, FirstField first);
  void judgeBlock(int column, int row, const Frame& picture, const Frame& before, FirstField first);
  void makePlane(int plane, const Frame& picture, FirstField first, Frame& to);

  FrameRef before_;
  FrameSize size_;
  int columns_ = 0;
  // For each block: how sure it is that the block is progressive-segmented, from 0 to kSurest.
  std::vector<std::uint8_t> segmented_;
  std::vector<std::uint8_t> zeros_;
};

}  // namespace korvia

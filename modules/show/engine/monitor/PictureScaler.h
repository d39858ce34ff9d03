// Scales a frame to the size of a monitor and converts it to RGB. It keeps its intermediate pictures, so
// each window has its own; one thread at a time.
#pragma once
#include <array>
#include <vector>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/ColumnTable.h"

namespace korvia {

class PictureScaler {
 public:
  /// Writes the whole picture at exactly `size` as 32-bit BGRX rows of `stride` bytes, a multiple of 4.
  void toRgb(const Frame& picture, FrameSize size, std::uint8_t* pixels, int stride);

 private:
  /// A row that is scaled: at the new height, then at the new width.
  struct Row {
    ColumnTable columns;
    std::vector<std::uint8_t> tall;
    std::vector<std::uint8_t> wide;
  };
  using Halves = std::array<std::vector<std::uint8_t>, 4>;

  static PlaneView halved(PlaneView plane, FrameSize size, Halves& halves);
  static void scaleRowOf(const PlaneView& plane, int y, FrameSize size, Row& row);

  std::array<Halves, 3> halves_;
  std::array<Row, 3> rows_;
};

/// The largest rectangle with the aspect ratio of the picture in the middle of a window, in whole pixels.
struct MonitorRect {
  int x = 0;
  int y = 0;
  FrameSize size;
};
MonitorRect monitorRect(FrameSize picture, FrameSize window);

}  // namespace korvia

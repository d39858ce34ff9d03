// Scales a frame to a monitor's size and turns it into RGB. Keeps its scratch pictures, so one instance a
// window; one thread at a time.
#pragma once
#include <memory>
#include <vector>

#include "engine/frame/Frame.h"

namespace korvia {

class PictureScaler {
 public:
  /// Writes the whole picture at exactly `size` as 32-bit BGRX rows of `stride` bytes, a multiple of 4.
  void toRgb(const Frame& picture, FrameSize size, std::uint8_t* pixels, int stride);

 private:
  const Frame& halved(const Frame& picture, FrameSize size);
  Frame& scratch(std::unique_ptr<Frame>& frame, FrameSize size);

  std::unique_ptr<Frame> halves_[3];
  std::vector<std::uint8_t> planes_;  // luma and both chromas at the monitor's size
};

/// The largest rectangle of the picture's shape in the middle of a window: x, y, width, height, whole pixels.
struct MonitorRect {
  int x = 0;
  int y = 0;
  FrameSize size;
};
MonitorRect monitorRect(FrameSize picture, FrameSize window);

}  // namespace korvia

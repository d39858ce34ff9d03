// What lies over the buses: draws the items on the raster worker and puts their layers on the buses' stacks
// at a frame boundary. Console thread: the paint pad's calls; engine thread: the rest.
#pragma once
#include <QImage>
#include <atomic>
#include <mutex>

#include "engine/ShowFormat.h"
#include "engine/bus/Bus.h"
#include "engine/items/RasterWorker.h"

namespace korvia {

class ItemStage {
 public:
  /// The buses must outlive the stage. The paint pad's drawing lies over program alone.
  explicit ItemStage(Bus& pgm) : pgm_(pgm) {}

  // Console thread.
  /// The operator's drawing from now on, in its own shape as large as fits into the picture; its alpha says
  /// how much it covers. A null image covers nothing.
  void commitPaintPad(const QImage& image);
  /// Whether the drawing is shown. The end forgets it, so that the next one does not begin with it.
  void setPaintPadValid(bool valid);

  // Engine thread.
  void open(const ShowFormat& format);
  /// A frame begins: layers that were drawn since the last one are shown from here on.
  void beginFrame();

 private:
  std::mutex sizeMutex_;
  FrameSize size_;  // guarded by sizeMutex_
  std::atomic<bool> paintPadValid_{false};

  Bus& pgm_;
  LayerRef paintPad_;                       // engine thread
  std::vector<RasterWorker::Drawn> drawn_;  // engine thread; kept so that a frame does not allocate
  RasterWorker raster_;
};

}  // namespace korvia

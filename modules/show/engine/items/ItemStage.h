// The items over the buses: draws them on the raster worker and puts their layers on the stacks of the buses
// at a frame boundary. Console thread: the calls of the paint pad; engine thread: the rest.
#pragma once
#include <QImage>
#include <atomic>

#include "ThreadSafety.h"
#include "engine/ShowFormat.h"
#include "engine/bus/Bus.h"
#include "engine/items/RasterWorker.h"
#include "engine/items/TextItems.h"

namespace korvia {

class ItemStage {
 public:
  /// The buses outlive the stage. The drawing of the paint pad is shown on program only.
  ItemStage(Bus& pvm, Bus& pgm) : pgm_(pgm), texts_(pvm, pgm, raster_) {}

  // Console thread.
  /// Shows this drawing of the operator from now on, letterboxed into the picture, with its alpha. A null
  /// image shows nothing.
  void commitPaintPad(const QImage& image);
  /// Shows or hides the drawing. Hiding discards it, so that the next one does not begin with it.
  void setPaintPadValid(bool valid);

  // Engine thread.
  void open(const ShowFormat& format);
  TextItems& texts() { return texts_; }
  /// Begins a frame, so many render frames after the last one: layers that were drawn since are shown from
  /// now on.
  void beginFrame(int ticks = 1);

 private:
  Mutex sizeMutex_;
  FrameSize size_ GUARDED_BY(sizeMutex_);
  std::atomic<bool> paintPadValid_{false};

  FrameRate rate_;  // engine thread
  Bus& pgm_;
  LayerRef paintPad_;                       // engine thread
  std::vector<RasterWorker::Drawn> drawn_;  // engine thread; kept so that a frame does not allocate
  RasterWorker raster_;
  TextItems texts_;  // engine thread
};

}  // namespace korvia

// The operator's drawing over program. Console thread: commit and setValid, which also do the conversion;
// engine thread: over.
#pragma once
#include <QImage>
#include <memory>
#include <mutex>

#include "engine/frame/FrameFit.h"
#include "engine/frame/FramePool.h"

namespace korvia {

class PaintLayer {
 public:
  /// The drawing from now on, in its own shape as large as fits into `size`; its alpha says how much it
  /// covers. A null image covers nothing.
  void commit(const QImage& image, FrameSize size);
  /// Whether the drawing is shown. The end forgets it, so that the next one does not begin with it.
  void setValid(bool valid);

  /// The picture under the drawing; the picture itself where there is nothing to draw. `pool` gives frames of
  /// the picture's size.
  FrameRef over(const FrameRef& picture, FramePool& pool);

 private:
  /// Immutable once it is made.
  struct Drawing;

  std::mutex mutex_;
  std::shared_ptr<const Drawing> drawing_;  // guarded by mutex_
  bool valid_ = false;                      // guarded by mutex_

  // What over() made last: a frozen program under an unchanged drawing is not drawn again. Engine thread.
  std::shared_ptr<const Drawing> lastDrawing_;
  FrameRef lastPicture_;
  FrameRef lastResult_;
};

}  // namespace korvia

// Pictures that come out a fixed number of frames after they went in. Engine thread: pull and push; any
// thread: the others.
#pragma once
#include <QString>
#include <cstdint>

#include "engine/frame/Frame.h"

namespace korvia {

class PictureDelay {
 public:
  virtual ~PictureDelay() = default;
  /// The picture that is due `ticks` frames after the last call, null for black. Comes before the push() of
  /// the same tick. Never blocks.
  virtual FrameRef pull(int ticks) = 0;
  /// The picture of this tick; the one before counts for the frames missed between them. Never blocks.
  virtual void push(const FrameRef& picture, int ticks) = 0;

  /// Begins to close and returns at once. Console thread.
  virtual void close() {}
  /// Why no picture comes any more; empty while there is no reason.
  virtual QString failure() const { return {}; }
  /// Pictures that were not there when they were due.
  virtual std::int64_t framesHeld() const { return 0; }
  /// Pictures that never came to the store.
  virtual std::int64_t framesLost() const { return 0; }
  /// Pictures that wait to be stored, and those that are ready to be shown.
  virtual int framesWaiting() const { return 0; }
  virtual int framesReady() const { return 0; }
};

}  // namespace korvia

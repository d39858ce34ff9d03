// Frames of one size, kept for reuse so that the frame path does not allocate. Any thread.
#pragma once
#include <memory>
#include <vector>

#include "Frame.h"
#include "ThreadSafety.h"

namespace korvia {

/// The state that the pool and its frames share; it outlives the pool while frames are in use.
struct FramePoolState {
  Mutex mutex;
  std::vector<Frame*> idle GUARDED_BY(mutex);
  bool open GUARDED_BY(mutex) = true;

  void giveBack(Frame* frame);
};

class FramePool {
 public:
  explicit FramePool(FrameSize size, FrameAlpha alpha = FrameAlpha::None);
  ~FramePool();
  FramePool(const FramePool&) = delete;
  FramePool& operator=(const FramePool&) = delete;

  /// A frame with undefined content. Allocates when all frames are in use.
  MutableFrame acquire();
  /// A black frame of the pool's size, made once and shared.
  FrameRef black();
  FrameSize size() const { return size_; }
  FrameAlpha alpha() const { return alpha_; }

 private:
  const FrameSize size_;
  const FrameAlpha alpha_;
  std::shared_ptr<FramePoolState> state_;
  Mutex blackMutex_;
  FrameRef black_ GUARDED_BY(blackMutex_);
};

}  // namespace korvia

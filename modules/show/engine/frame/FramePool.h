// Frames of one size, kept for reuse so that the frame path does not allocate. Any thread.
#pragma once
#include <memory>
#include <mutex>
#include <vector>

#include "Frame.h"

namespace korvia {

/// The state that the pool and its frames share; it outlives the pool while frames are in use.
struct FramePoolState {
  std::mutex mutex;
  std::vector<Frame*> idle;  // guarded by mutex
  bool open = true;          // guarded by mutex

  void giveBack(Frame* frame);
};

class FramePool {
 public:
  explicit FramePool(FrameSize size, bool alpha = false);
  ~FramePool();
  FramePool(const FramePool&) = delete;
  FramePool& operator=(const FramePool&) = delete;

  /// A frame with undefined content. Allocates when all frames are in use.
  MutableFrame acquire();
  /// A black frame of the pool's size, made once and shared.
  FrameRef black();
  FrameSize size() const { return size_; }
  bool hasAlpha() const { return alpha_; }

 private:
  const FrameSize size_;
  const bool alpha_;
  std::shared_ptr<FramePoolState> state_;
  std::mutex blackMutex_;
  FrameRef black_;  // guarded by blackMutex_
};

}  // namespace korvia

// A short delay, whose pictures are copies in memory. Copies, because frames of cameras and decoders come
// from a few buffers, which the device needs back. Engine thread.
#pragma once
#include <vector>

#include "PictureDelay.h"
#include "engine/frame/FramePool.h"

namespace korvia {

class MemoryDelay final : public PictureDelay {
 public:
  /// `frames`: the delay, at least 1.
  MemoryDelay(FrameSize size, int frames);

  FrameRef pull(int ticks) override;
  void push(const FrameRef& picture, int ticks) override;

 private:
  FrameRef copyOf(const Frame& picture);

  FramePool opaque_;
  FramePool transparent_;
  std::vector<FrameRef> pictures_;  // by frame number; one more than the delay
  std::int64_t number_ = 0;         // of the last picture that was pushed
  std::int64_t shown_;              // of the last picture that was pulled
  FrameRef lastIn_;
  FrameRef last_;  // the copy of it
};

}  // namespace korvia

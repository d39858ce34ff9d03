// Copies frames into GStreamer buffers of NV12, for encoders of GPUs, and reuses the buffers. Used by one
// thread; buffers may be freed on any.
#pragma once
#include <gst/gst.h>

#include "engine/frame/Frame.h"

namespace korvia {

class Nv12Export {
 public:
  /// Of the frames; both sides even.
  explicit Nv12Export(FrameSize size);
  ~Nv12Export();
  Nv12Export(const Nv12Export&) = delete;
  Nv12Export& operator=(const Nv12Export&) = delete;

  /// A buffer with video meta that the caller owns; its time stamps are not set. Null when memory is short.
  GstBuffer* copy(const Frame& frame);

 private:
  GstBufferPool* pool_ = nullptr;
};

}  // namespace korvia

// Hands frames to GStreamer without a copy. Any thread.
#pragma once
#include <gst/gst.h>

#include "engine/frame/Frame.h"

namespace korvia {

/// A buffer of I420 whose three memories are the frame's own planes; its video meta carries their strides.
/// The frame is held until the last memory is freed, on whichever thread that happens. The caller owns the
/// buffer; time stamps are unset.
GstBuffer* wrapFrame(const FrameRef& frame);

}  // namespace korvia

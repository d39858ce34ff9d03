// Frames as GStreamer buffers, for encoders, and as QImages, for snapshots. Pure functions, any thread.
#pragma once
#include <gst/gst.h>

#include <QImage>

#include "engine/frame/Frame.h"

namespace korvia {

/// A buffer of I420 over the frame's own planes, without a copy; its video meta has their strides. The frame
/// is held until the last memory of the buffer is freed, on any thread. The caller owns the buffer; its time
/// stamps are not set.
GstBuffer* wrapFrame(const FrameRef& frame);

/// The frame without its alpha as Format_RGB32 of the same size, within one code value of the exact BT.709
/// conversion; a null image when memory is short.
QImage toImage(const Frame& frame);

}  // namespace korvia

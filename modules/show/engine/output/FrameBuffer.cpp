#include "FrameBuffer.h"

#include <gst/video/video.h>

#include "engine/HappensBefore.h"

namespace korvia {

namespace {

void releaseFrame(gpointer frame) {
  annotateHappensAfter(frame);
  delete static_cast<FrameRef*>(frame);
}

}  // namespace

GstBuffer* wrapFrame(const FrameRef& frame) {
  GstBuffer* buffer = gst_buffer_new();
  gsize offset[GST_VIDEO_MAX_PLANES] = {};
  gint stride[GST_VIDEO_MAX_PLANES] = {};
  gsize total = 0;
  for (int plane = 0; plane < 3; ++plane) {
    offset[plane] = total;
    stride[plane] = frame->stride(plane);
    // The last row may end where its pixels end.
    const gsize size = static_cast<gsize>(frame->stride(plane)) * (frame->planeHeight(plane) - 1) +
                       static_cast<gsize>(frame->planeWidth(plane));
    auto* held = new FrameRef(frame);
    annotateHappensBefore(held);
    // Read-only memory: nobody downstream ever writes to it.
    gst_buffer_append_memory(buffer, gst_memory_new_wrapped(GST_MEMORY_FLAG_READONLY,
                                                            const_cast<std::uint8_t*>(frame->plane(plane)),
                                                            size, 0, size, held, releaseFrame));
    total += size;
  }
  gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_FORMAT_I420,
                                 static_cast<guint>(frame->width()), static_cast<guint>(frame->height()), 3,
                                 offset, stride);
  return buffer;
}

}  // namespace korvia

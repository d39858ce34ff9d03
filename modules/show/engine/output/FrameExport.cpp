#include "FrameExport.h"

#include <gst/video/video.h>
#include <libyuv.h>

#include <vector>

#include "engine/HappensBefore.h"
#include "engine/frame/RgbRow.h"

namespace korvia {

namespace {

void releaseFrame(gpointer frame) {
  annotateHappensAfter(frame);
  delete static_cast<FrameRef*>(frame);
}

std::vector<std::uint8_t> fullSize(const Frame& frame, int plane) {
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(frame.width()) * frame.height());
  libyuv::ScalePlane(frame.plane(plane), frame.stride(plane), frame.planeWidth(plane),
                     frame.planeHeight(plane), pixels.data(), frame.width(), frame.width(), frame.height(),
                     libyuv::kFilterBilinear);
  return pixels;
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

QImage toImage(const Frame& frame) {
  QImage image(frame.width(), frame.height(), QImage::Format_RGB32);
  if (image.isNull())
    return image;
  const std::vector<std::uint8_t> us = fullSize(frame, Frame::U);
  const std::vector<std::uint8_t> vs = fullSize(frame, Frame::V);
  for (int row = 0; row < frame.height(); ++row) {
    const std::uint8_t* y = frame.plane(Frame::Y) + static_cast<std::ptrdiff_t>(row) * frame.stride(Frame::Y);
    const std::size_t chroma = static_cast<std::size_t>(row) * frame.width();
    rowToRgb(y, us.data() + chroma, vs.data() + chroma, reinterpret_cast<std::uint32_t*>(image.scanLine(row)),
             frame.width());
  }
  return image;
}

}  // namespace korvia

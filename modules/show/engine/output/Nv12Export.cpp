#include "Nv12Export.h"

#include <gst/video/gstvideopool.h>
#include <gst/video/video.h>
#include <libyuv.h>

namespace korvia {

Nv12Export::Nv12Export(FrameSize size) : pool_(gst_video_buffer_pool_new()) {
  GstCaps* caps = gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "NV12", "width", G_TYPE_INT,
                                      size.width, "height", G_TYPE_INT, size.height, nullptr);
  GstVideoInfo info;
  gst_video_info_from_caps(&info, caps);
  GstStructure* config = gst_buffer_pool_get_config(pool_);
  gst_buffer_pool_config_set_params(config, caps, static_cast<guint>(info.size), 0, 0);
  gst_buffer_pool_config_add_option(config, GST_BUFFER_POOL_OPTION_VIDEO_META);
  gst_caps_unref(caps);
  gst_buffer_pool_set_config(pool_, config);
  gst_buffer_pool_set_active(pool_, TRUE);
}

Nv12Export::~Nv12Export() {
  gst_buffer_pool_set_active(pool_, FALSE);
  gst_object_unref(pool_);
}

GstBuffer* Nv12Export::copy(const Frame& frame) {
  GstBuffer* buffer = nullptr;
  if (gst_buffer_pool_acquire_buffer(pool_, &buffer, nullptr) != GST_FLOW_OK)
    return nullptr;
  const GstVideoMeta* meta = gst_buffer_get_video_meta(buffer);
  GstMapInfo map;
  if (!meta || !gst_buffer_map(buffer, &map, GST_MAP_WRITE)) {
    gst_buffer_unref(buffer);
    return nullptr;
  }
  libyuv::I420ToNV12(frame.plane(Frame::Y), frame.stride(Frame::Y), frame.plane(Frame::U),
                     frame.stride(Frame::U), frame.plane(Frame::V), frame.stride(Frame::V),
                     map.data + meta->offset[0], meta->stride[0], map.data + meta->offset[1], meta->stride[1],
                     frame.width(), frame.height());
  gst_buffer_unmap(buffer, &map);
  return buffer;
}

}  // namespace korvia

#include "VideoFrameMaker.h"

#include <libyuv/planar_functions.h>
#include <libyuv/rotate.h>

#include <cstring>

#include "Source.h"
#include "SourceLog.h"

namespace korvia {

namespace {

/// What a frame over a decoder's memory holds on to.
struct HeldPicture {
  GstVideoFrame frame;

  static void release(void* opaque) {
    auto* held = static_cast<HeldPicture*>(opaque);
    gst_video_frame_unmap(&held->frame);
    delete held;
  }
};

constexpr int kComponents[3] = {GST_VIDEO_COMP_Y, GST_VIDEO_COMP_U, GST_VIDEO_COMP_V};

std::unique_ptr<FramePool>& sized(std::unique_ptr<FramePool>& pool, FrameSize size) {
  if (!pool || pool->size() != size)
    pool = std::make_unique<FramePool>(size);
  return pool;
}

}  // namespace

PictureOrientation PictureOrientation::fromTag(const char* tag) {
  PictureOrientation orientation;
  if (!tag)
    return orientation;
  const char* rest = tag;
  if (std::strncmp(rest, "flip-", 5) == 0) {
    orientation.mirrored = true;
    rest += 5;
  }
  if (std::strcmp(rest, "rotate-90") == 0)
    orientation.degrees = 90;
  else if (std::strcmp(rest, "rotate-180") == 0)
    orientation.degrees = 180;
  else if (std::strcmp(rest, "rotate-270") == 0)
    orientation.degrees = 270;
  else if (std::strcmp(rest, "rotate-0") != 0)
    return {};
  return orientation;
}

VideoFrameMaker::VideoFrameMaker(FrameSize renderSize) : renderSize_(renderSize), renderPool_(renderSize) {
  gst_video_info_init(&info_);
  gst_video_info_init(&workingInfo_);
}

VideoFrameMaker::~VideoFrameMaker() {
  gst_caps_replace(&caps_, nullptr);
}

void VideoFrameMaker::setOrientation(PictureOrientation orientation) {
  orientation_.store(orientation.degrees + (orientation.mirrored ? 1 : 0), std::memory_order_relaxed);
}

FrameSize VideoFrameMaker::pictureSize() const {
  return {info_.width, info_.height};
}

bool VideoFrameMaker::isWorkingFormat() const {
  const GstVideoFormat format = GST_VIDEO_INFO_FORMAT(&info_);
  return (format == GST_VIDEO_FORMAT_I420 || format == GST_VIDEO_FORMAT_YV12) &&
         info_.colorimetry.range != GST_VIDEO_COLOR_RANGE_0_255 &&
         info_.colorimetry.matrix == GST_VIDEO_COLOR_MATRIX_BT709;
}

bool VideoFrameMaker::adaptTo(GstCaps* caps) {
  if (caps == caps_ || (caps_ && gst_caps_is_equal(caps, caps_)))
    return usable_;
  GstVideoInfo info;
  gst_caps_replace(&caps_, caps);
  usable_ = false;
  if (!gst_video_info_from_caps(&info, caps) || info.width <= 0 || info.height <= 0)
    return false;
  if (static_cast<std::int64_t>(info.width) * info.height > kMostPixels) {
    qCWarning(logSource, "pictures of %d x %d are too large", info.width, info.height);
    return false;
  }
  info_ = info;
  frameDurationNs_ =
      info.fps_n > 0 && info.fps_d > 0
          ? static_cast<std::int64_t>(gst_util_uint64_scale_int(GST_SECOND, info.fps_d, info.fps_n))
          : 0;
  converter_.reset();
  usable_ = isWorkingFormat();
  if (usable_)
    return true;
  gst_video_info_set_format(&workingInfo_, GST_VIDEO_FORMAT_I420, static_cast<guint>(info.width),
                            static_cast<guint>(info.height));
  gst_video_colorimetry_from_string(&workingInfo_.colorimetry, GST_VIDEO_COLORIMETRY_BT709);
  workingInfo_.chroma_site = info.chroma_site;
  // The converter asks for equal rates and shapes on both sides; it changes neither.
  workingInfo_.fps_n = info.fps_n;
  workingInfo_.fps_d = info.fps_d;
  workingInfo_.par_n = info.par_n;
  workingInfo_.par_d = info.par_d;
  workingInfo_.interlace_mode = info.interlace_mode;
  converter_.reset(gst_video_converter_new(&info_, &workingInfo_, gst_structure_new_empty("convert")));
  if (!converter_)
    qCWarning(logSource, "pictures of format %s cannot be converted",
              gst_video_format_to_string(GST_VIDEO_INFO_FORMAT(&info_)));
  usable_ = converter_ != nullptr;
  return usable_;
}

FrameRef VideoFrameMaker::wrap(GstBuffer* buffer) const {
  auto held = std::make_unique<HeldPicture>();
  if (!gst_video_frame_map(&held->frame, &info_, buffer, GST_MAP_READ))
    return {};
  Frame::External external;
  for (int i = 0; i < 3; ++i) {
    external.data[i] =
        static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_COMP_DATA(&held->frame, kComponents[i]));
    external.stride[i] = GST_VIDEO_FRAME_COMP_STRIDE(&held->frame, kComponents[i]);
  }
  external.release = HeldPicture::release;
  external.opaque = held.release();
  return FrameRef::adopt(new Frame(pictureSize(), external));
}

FrameRef VideoFrameMaker::convert(GstBuffer* buffer) {
  GstVideoFrame from;
  if (!gst_video_frame_map(&from, &info_, buffer, GST_MAP_READ))
    return {};
  MutableFrame picture = sized(picturePool_, pictureSize())->acquire();
  GstVideoFrame to = {};
  to.info = workingInfo_;
  for (int i = 0; i < 3; ++i) {
    to.data[i] = picture->writablePlane(i);
    to.info.stride[i] = picture->stride(i);
  }
  gst_video_converter_frame(converter_.get(), &from, &to);
  gst_video_frame_unmap(&from);
  return std::move(picture).publish();
}

FrameRef VideoFrameMaker::turn(const FrameRef& picture, PictureOrientation orientation) {
  const bool lying = orientation.degrees == 90 || orientation.degrees == 270;
  const FrameSize size = lying ? FrameSize{picture->height(), picture->width()} : picture->size();
  MutableFrame turned = sized(turnedPool_, size)->acquire();
  for (int i = 0; i < 3; ++i) {
    const int width = picture->planeWidth(i);
    const int height = picture->planeHeight(i);
    const auto mode = static_cast<libyuv::RotationMode>(orientation.degrees);
    libyuv::RotatePlane(picture->plane(i), picture->stride(i), turned->writablePlane(i), turned->stride(i),
                        width, height, mode);
  }
  return std::move(turned).publish();
}

FrameRef VideoFrameMaker::make(GstSample* sample) {
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  GstCaps* caps = gst_sample_get_caps(sample);
  if (!buffer || !caps || !adaptTo(caps))
    return {};
  FrameRef picture = isWorkingFormat() ? wrap(buffer) : convert(buffer);
  if (!picture)
    return {};
  int aspectNumerator = info_.par_n;
  int aspectDenominator = info_.par_d;
  const int packed = orientation_.load(std::memory_order_relaxed);
  if (packed != 0) {
    const PictureOrientation orientation{(packed & 1) != 0, packed & ~1};
    if (orientation.mirrored) {
      MutableFrame mirrored = sized(picturePool_, picture->size())->acquire();
      for (int i = 0; i < 3; ++i)
        libyuv::MirrorPlane(picture->plane(i), picture->stride(i), mirrored->writablePlane(i),
                            mirrored->stride(i), picture->planeWidth(i), picture->planeHeight(i));
      picture = std::move(mirrored).publish();
    }
    if (orientation.degrees != 0)
      picture = turn(picture, orientation);
    if (orientation.degrees == 90 || orientation.degrees == 270)
      std::swap(aspectNumerator, aspectDenominator);
  }
  const FrameRect rect = fitRect(picture->size(), aspectNumerator, aspectDenominator, renderSize_);
  if (picture->size() == renderSize_ && rect == FrameRect{0, 0, renderSize_.width, renderSize_.height})
    return picture;
  MutableFrame fitted = renderPool_.acquire();
  fitFrame(*picture, rect, *fitted);
  return std::move(fitted).publish();
}

}  // namespace korvia

#include "VideoFrameMaker.h"

#include <libyuv/planar_functions.h>
#include <libyuv/rotate.h>

#include <cstring>

#include "Source.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

/// Keeps a decoder's picture mapped as long as a frame uses its memory.
struct HeldPicture {
  GstVideoFrame frame;

  static void release(void* opaque) {
    auto* held = static_cast<HeldPicture*>(opaque);
    gst_video_frame_unmap(&held->frame);
    delete held;
  }
};

constexpr int kComponents[3] = {GST_VIDEO_COMP_Y, GST_VIDEO_COMP_U, GST_VIDEO_COMP_V};

MutableFrame acquire(std::unique_ptr<FramePool>& pool, FrameSize size, FrameAlpha alpha) {
  if (!pool || pool->size() != size || pool->alpha() != alpha)
    pool = std::make_unique<FramePool>(size, alpha);
  return pool->acquire();
}

/// The upper left part of the picture, in the same memory.
FrameRef cropped(const FrameRef& picture, FrameSize size) {
  if (picture->size() == size)
    return picture;
  Frame::External external;
  for (int plane = Frame::Y; plane <= Frame::A; ++plane) {
    external.data[plane] = picture->plane(plane);
    external.stride[plane] = picture->stride(plane);
  }
  external.opaque = new FrameRef(picture);
  external.release = [](void* held) { delete static_cast<FrameRef*>(held); };
  return FrameRef::adopt(new Frame(size, external));
}

/// GStreamer replaces a colorimetry as a whole by a guess when it does not know a part of it. This restores
/// the parts that the caps state.
void keepKnownColors(GstCaps* caps, GstVideoColorimetry& colors) {
  const char* text = gst_structure_get_string(gst_caps_get_structure(caps, 0), "colorimetry");
  GstVideoColorimetry told;
  if (!text || !gst_video_colorimetry_from_string(&told, text))
    return;
  if (told.range != GST_VIDEO_COLOR_RANGE_UNKNOWN)
    colors.range = told.range;
  if (told.transfer != GST_VIDEO_TRANSFER_UNKNOWN)
    colors.transfer = told.transfer;
  if (told.primaries != GST_VIDEO_COLOR_PRIMARIES_UNKNOWN)
    colors.primaries = told.primaries;
}

int planesOf(const Frame& frame) {
  return frame.hasAlpha() ? 4 : 3;
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

VideoFrameMaker::VideoFrameMaker(FrameSize renderSize, ComingAlpha alpha)
    : renderSize_(renderSize), alpha_(alpha) {
  gst_video_info_init(&info_);
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
  keepKnownColors(caps, info.colorimetry);
  // Caps have no field for it.
  if (alpha_ == ComingAlpha::Premultiplied)
    info.flags = static_cast<GstVideoFlags>(info.flags | GST_VIDEO_FLAG_PREMULTIPLIED_ALPHA);
  info_ = info;
  frameDurationNs_ =
      info.fps_n > 0 && info.fps_d > 0
          ? static_cast<std::int64_t>(gst_util_uint64_scale_int(GST_SECOND, info.fps_d, info.fps_n))
          : 0;
  for (std::unique_ptr<PictureConverter>& converter : converters_)
    converter.reset();
  const PictureScan scan = GST_VIDEO_INFO_INTERLACE_MODE(&info_) == GST_VIDEO_INTERLACE_MODE_INTERLEAVED
                               ? PictureScan::Interlaced
                               : PictureScan::Progressive;
  usable_ = PictureConverter::isWorkingFormat(info_) || converterFor(scan);
  if (!usable_)
    qCWarning(logSource, "pictures of format %s cannot be converted",
              gst_video_format_to_string(GST_VIDEO_INFO_FORMAT(&info_)));
  return usable_;
}

PictureConverter* VideoFrameMaker::converterFor(PictureScan scan) {
  std::unique_ptr<PictureConverter>& converter = converters_[static_cast<std::size_t>(scan)];
  if (!converter)
    converter = PictureConverter::create(info_, scan);
  return converter.get();
}

PictureScan VideoFrameMaker::scanOf(GstBuffer* buffer) const {
  const GstVideoInterlaceMode mode = GST_VIDEO_INFO_INTERLACE_MODE(&info_);
  const bool interlaced = mode == GST_VIDEO_INTERLACE_MODE_INTERLEAVED ||
                          (mode == GST_VIDEO_INTERLACE_MODE_MIXED &&
                           GST_BUFFER_FLAG_IS_SET(buffer, GST_VIDEO_BUFFER_FLAG_INTERLACED));
  return interlaced ? PictureScan::Interlaced : PictureScan::Progressive;
}

FirstField VideoFrameMaker::firstFieldOf(GstBuffer* buffer) const {
  if (GST_VIDEO_INFO_FIELD_ORDER(&info_) == GST_VIDEO_FIELD_ORDER_TOP_FIELD_FIRST)
    return FirstField::Top;
  if (GST_VIDEO_INFO_FIELD_ORDER(&info_) == GST_VIDEO_FIELD_ORDER_BOTTOM_FIELD_FIRST)
    return FirstField::Bottom;
  return GST_BUFFER_FLAG_IS_SET(buffer, GST_VIDEO_BUFFER_FLAG_TFF) ? FirstField::Top : FirstField::Bottom;
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

FrameRef VideoFrameMaker::convert(GstBuffer* buffer, PictureScan scan) {
  PictureConverter* converter = converterFor(scan);
  GstVideoFrame from;
  if (!converter || !gst_video_frame_map(&from, &info_, buffer, GST_MAP_READ))
    return {};
  MutableFrame picture = acquire(convertedPool_, converter->paddedSize(), converter->alpha());
  const bool converted = converter->convert(from, *picture);
  gst_video_frame_unmap(&from);
  return converted ? cropped(std::move(picture).publish(), pictureSize()) : FrameRef();
}

FrameRef VideoFrameMaker::makeProgressive(const FrameRef& picture, GstBuffer* buffer) {
  MutableFrame progressive = acquire(progressivePool_, picture->size(), picture->alpha());
  deinterlacer_.process(picture, firstFieldOf(buffer), *progressive);
  return std::move(progressive).publish();
}

FrameRef VideoFrameMaker::makeUpright(FrameRef picture, PictureOrientation orientation) {
  if (orientation.mirrored) {
    MutableFrame mirrored = acquire(mirroredPool_, picture->size(), picture->alpha());
    for (int i = 0; i < planesOf(*picture); ++i)
      libyuv::MirrorPlane(picture->plane(i), picture->stride(i), mirrored->writablePlane(i),
                          mirrored->stride(i), picture->planeWidth(i), picture->planeHeight(i));
    picture = std::move(mirrored).publish();
  }
  if (orientation.degrees == 0)
    return picture;
  const FrameSize size =
      orientation.liesDown() ? FrameSize{picture->height(), picture->width()} : picture->size();
  MutableFrame turned = acquire(turnedPool_, size, picture->alpha());
  for (int i = 0; i < planesOf(*picture); ++i)
    libyuv::RotatePlane(picture->plane(i), picture->stride(i), turned->writablePlane(i), turned->stride(i),
                        picture->planeWidth(i), picture->planeHeight(i),
                        static_cast<libyuv::RotationMode>(orientation.degrees));
  return std::move(turned).publish();
}

FrameRef VideoFrameMaker::make(GstSample* sample) {
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  GstCaps* caps = gst_sample_get_caps(sample);
  if (!buffer || !caps || !adaptTo(caps))
    return {};
  const PictureScan scan = scanOf(buffer);
  FrameRef picture = PictureConverter::isWorkingFormat(info_) ? wrap(buffer) : convert(buffer, scan);
  if (!picture)
    return {};
  if (scan == PictureScan::Interlaced)
    picture = makeProgressive(picture, buffer);
  else if (GST_VIDEO_INFO_INTERLACE_MODE(&info_) == GST_VIDEO_INTERLACE_MODE_MIXED)
    deinterlacer_.skip(picture);
  const int packed = orientation_.load(std::memory_order_relaxed);
  const PictureOrientation orientation{(packed & 1) != 0, packed & ~1};
  picture = makeUpright(std::move(picture), orientation);
  int aspectNumerator = info_.par_n;
  int aspectDenominator = info_.par_d;
  if (orientation.liesDown())
    std::swap(aspectNumerator, aspectDenominator);
  const FrameRect rect = fitRect(picture->size(), aspectNumerator, aspectDenominator, renderSize_);
  if (picture->size() == renderSize_ && rect == FrameRect{0, 0, renderSize_.width, renderSize_.height})
    return picture;
  MutableFrame fitted = acquire(renderPool_, renderSize_, picture->alpha());
  fitFrame(*picture, rect, *fitted);
  return std::move(fitted).publish();
}

}  // namespace korvia

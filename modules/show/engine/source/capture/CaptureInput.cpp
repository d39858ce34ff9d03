#include "CaptureInput.h"

#include <gst/video/video.h>

#include "CaptureShelf.h"
#include "engine/source/GstInit.h"

namespace korvia {

namespace {

/// The picture as a buffer around its memory, with the gaps between its rows.
GstBuffer* wrapped(const CapturePicture& picture) {
  const gsize bytes = static_cast<gsize>(picture.stride) * static_cast<gsize>(picture.height);
  GstBuffer* buffer = gst_buffer_new_wrapped_full(
      GST_MEMORY_FLAG_READONLY, const_cast<std::uint8_t*>(picture.data), bytes, 0, bytes, nullptr, nullptr);
  gsize offsets[GST_VIDEO_MAX_PLANES] = {};
  gint strides[GST_VIDEO_MAX_PLANES] = {picture.stride};
  const GstVideoFormat format =
      picture.layout == CaptureLayout::Opaque ? GST_VIDEO_FORMAT_BGRx : GST_VIDEO_FORMAT_BGRA;
  gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, format, static_cast<guint>(picture.width),
                                 static_cast<guint>(picture.height), 1, offsets, strides);
  return buffer;
}

}  // namespace

CaptureInput::CaptureInput(const CaptureRequest& request, FrameSize renderSize,
                           std::shared_ptr<std::atomic<bool>> windowIsGone, LiveReceiver& receiver)
    : request_(request),
      windowIsGone_(std::move(windowIsGone)),
      receiver_(receiver),
      opaqueMaker_(renderSize),
      alphaMaker_(renderSize, ComingAlpha::Premultiplied) {}

CaptureInput::~CaptureInput() {
  process_.reset();
  gst_caps_replace(&caps_, nullptr);
}

bool CaptureInput::start(QString& reason) {
  // The program of a page reads the list of plugins that is made here.
  if (!startGStreamer()) {
    reason = QStringLiteral("gstreamer does not start");
    return false;
  }
  // A page that the operator has logged in to goes on as it stands.
  process_ = CaptureShelf::instance().take(request_, *this);
  if (process_)
    return true;
  process_ = std::make_unique<CaptureProcess>(static_cast<CaptureListener&>(*this));
  return process_->start(request_, reason);
}

void CaptureInput::adaptTo(const Format& format) {
  if (format_ == format)
    return;
  format_ = format;
  GstVideoInfo info;
  gst_video_info_set_format(
      &info, format.layout == CaptureLayout::Opaque ? GST_VIDEO_FORMAT_BGRx : GST_VIDEO_FORMAT_BGRA,
      static_cast<guint>(format.width), static_cast<guint>(format.height));
  GstCaps* caps = gst_video_info_to_caps(&info);
  gst_caps_replace(&caps_, caps);
  gst_caps_unref(caps);
}

void CaptureInput::onCapturePicture(const CapturePicture& picture) {
  adaptTo({picture.width, picture.height, picture.layout});
  GstBuffer* buffer = wrapped(picture);
  GstSample* sample = gst_sample_new(buffer, caps_, nullptr, nullptr);
  VideoFrameMaker& maker = picture.layout == CaptureLayout::Opaque ? opaqueMaker_ : alphaMaker_;
  // No format of four bytes a pixel is passed on without a copy, so the frame does not hold the shared
  // memory.
  FrameRef frame = maker.make(sample);
  gst_sample_unref(sample);
  gst_buffer_unref(buffer);
  if (!frame)
    return;
  last_ = frame;
  receiver_.onPicture(std::move(frame), picture.stampNs, 0);
}

void CaptureInput::onCaptureRepeat(std::int64_t stampNs) {
  if (last_)
    receiver_.onPicture(last_, stampNs, 0);
}

void CaptureInput::onCaptureSound(const float* samples, int frames, std::int64_t stampNs) {
  const auto count = static_cast<std::size_t>(frames);
  left_.resize(count);
  right_.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    left_[i] = samples[2 * i];
    right_[i] = samples[2 * i + 1];
  }
  receiver_.onSound({left_.data(), right_.data(), frames}, stampNs, 0);
}

void CaptureInput::onCaptureEnded(const QString& reason) {
  if (reason == QLatin1String(kWindowWasClosed) || reason == QLatin1String(kWindowIsNotOpen))
    *windowIsGone_ = true;
  receiver_.onLost(reason);
}

}  // namespace korvia

// Makes frames of the render size from GStreamer's decoded pictures: BT.709 limited range 4:2:0, progressive,
// upright, with the display aspect ratio of the film. Alpha is kept and premultiplied. A picture that needs
// no change is passed on without a copy. One thread at a time (the film's streaming thread), except
// setOrientation: any thread.
#pragma once
#include <gst/video/video.h>

#include <atomic>
#include <memory>

#include "Deinterlacer.h"
#include "PictureConverter.h"
#include "engine/frame/Frame.h"
#include "engine/frame/FrameFit.h"
#include "engine/frame/FramePool.h"

namespace korvia {

/// How a picture has to be turned to be upright: first mirrored left to right, then rotated clockwise.
struct PictureOrientation {
  bool mirrored = false;
  int degrees = 0;

  /// From a tag like "rotate-90" or "flip-rotate-180"; upright for anything else.
  static PictureOrientation fromTag(const char* tag);
  /// Whether width and height are exchanged.
  bool liesDown() const { return degrees == 90 || degrees == 270; }
  friend bool operator==(const PictureOrientation& a, const PictureOrientation& b) {
    return a.mirrored == b.mirrored && a.degrees == b.degrees;
  }
};

/// What alpha has done to the colours of the pictures that come.
enum class ComingAlpha { Straight, Premultiplied };

class VideoFrameMaker {
 public:
  explicit VideoFrameMaker(FrameSize renderSize, ComingAlpha alpha = ComingAlpha::Straight);
  ~VideoFrameMaker();
  VideoFrameMaker(const VideoFrameMaker&) = delete;
  VideoFrameMaker& operator=(const VideoFrameMaker&) = delete;

  /// Null when the sample has no picture that can be read.
  FrameRef make(GstSample* sample);
  void setOrientation(PictureOrientation orientation);
  /// The duration of one picture by the film's frame rate; 0 when that is unknown.
  std::int64_t frameDurationNs() const { return frameDurationNs_; }
  FrameSize pictureSize() const;

 private:
  bool adaptTo(GstCaps* caps);
  PictureConverter* converterFor(PictureScan scan);
  PictureScan scanOf(GstBuffer* buffer) const;
  FirstField firstFieldOf(GstBuffer* buffer) const;
  FrameRef wrap(GstBuffer* buffer) const;
  FrameRef convert(GstBuffer* buffer, PictureScan scan);
  FrameRef makeProgressive(const FrameRef& picture, GstBuffer* buffer);
  FrameRef makeUpright(FrameRef picture, PictureOrientation orientation);

  const FrameSize renderSize_;
  const ComingAlpha alpha_;
  // A pool for the frames of each step, in the order of the steps.
  std::unique_ptr<FramePool> convertedPool_;
  std::unique_ptr<FramePool> progressivePool_;
  std::unique_ptr<FramePool> mirroredPool_;
  std::unique_ptr<FramePool> turnedPool_;
  std::unique_ptr<FramePool> renderPool_;
  std::unique_ptr<PictureConverter> converters_[2];  // by PictureScan, made when needed
  Deinterlacer deinterlacer_;
  GstCaps* caps_ = nullptr;
  bool usable_ = false;  // pictures with these caps can be read
  GstVideoInfo info_;
  std::int64_t frameDurationNs_ = 0;
  std::atomic<int> orientation_{0};  // degrees, plus 1 when mirrored
};

}  // namespace korvia

// Turns GStreamer's decoded pictures into frames of the render size: BT.709 limited 4:2:0, progressive,
// upright, with the shape that the film asks for. Alpha is kept, premultiplied. A picture that is all that
// already is handed on without a copy. One thread at a time (the film's streaming thread); setOrientation
// from any.
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

/// How a picture has to be turned to stand upright: mirrored left to right first, then turned clockwise.
struct PictureOrientation {
  bool mirrored = false;
  int degrees = 0;

  /// From a tag like "rotate-90" or "flip-rotate-180"; upright for anything else.
  static PictureOrientation fromTag(const char* tag);
  /// Whether width and height change places.
  bool liesDown() const { return degrees == 90 || degrees == 270; }
  friend bool operator==(const PictureOrientation& a, const PictureOrientation& b) {
    return a.mirrored == b.mirrored && a.degrees == b.degrees;
  }
};

class VideoFrameMaker {
 public:
  explicit VideoFrameMaker(FrameSize renderSize);
  ~VideoFrameMaker();
  VideoFrameMaker(const VideoFrameMaker&) = delete;
  VideoFrameMaker& operator=(const VideoFrameMaker&) = delete;

  /// Null when the sample has no picture that can be read.
  FrameRef make(GstSample* sample);
  void setOrientation(PictureOrientation orientation);
  /// What one picture lasts by the film's frame rate; 0 when that is unknown.
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
  // Pools of the frames that the steps make, in their order.
  std::unique_ptr<FramePool> convertedPool_;
  std::unique_ptr<FramePool> progressivePool_;
  std::unique_ptr<FramePool> mirroredPool_;
  std::unique_ptr<FramePool> turnedPool_;
  std::unique_ptr<FramePool> renderPool_;
  std::unique_ptr<PictureConverter> converters_[2];  // by PictureScan, made when needed
  Deinterlacer deinterlacer_;
  GstCaps* caps_ = nullptr;
  bool usable_ = false;  // pictures of these caps can be read
  GstVideoInfo info_;
  std::int64_t frameDurationNs_ = 0;
  std::atomic<int> orientation_{0};  // degrees, plus 1 when mirrored
};

}  // namespace korvia

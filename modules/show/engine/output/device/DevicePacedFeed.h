// Feeds a device that plays by a clock of its own: whenever the device has room, it gets its next picture and
// the sound of that. Threads as in DeviceFeed.
#pragma once
#include <vector>

#include "DeviceFeed.h"
#include "ProgramPacer.h"

namespace korvia {

class DevicePacedFeed final : public DeviceFeed {
 public:
  /// At its start a device fills its own buffer without a pause. It gets silence for that, since such a rush
  /// says nothing about its clock.
  static constexpr qint64 kSilentPictures = 10;

  DevicePacedFeed(FrameRate show, FrameRate device);

  void pushSound(StereoSpan sound, qint64 nowNs) override { pacer_.pushSound(sound, nowNs); }
  void pushFrame(const FrameRef& frame) override { pacer_.pushFrame(frame); }
  void begin() override;
  void feed(DevicePipeline& pipeline) override;
  void end() override { pacer_.end(); }
  qint64 droppedFrames() const override { return pacer_.droppedFrames(); }

 private:
  const FrameRate rate_;
  ProgramPacer pacer_;

  // Thread of the device.
  qint64 pictures_ = 0;  // of the pipeline
  std::vector<float> left_;
  std::vector<float> right_;
  std::vector<float> pairs_;
};

}  // namespace korvia

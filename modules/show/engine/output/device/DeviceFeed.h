// Stands between the engine and a device: takes program on the engine thread and gives it to the device's
// pipeline on the thread of a DeviceOutput.
#pragma once
#include "DevicePipeline.h"
#include "engine/audio/StereoSpan.h"

namespace korvia {

class DeviceFeed {
 public:
  DeviceFeed() = default;
  virtual ~DeviceFeed() = default;
  DeviceFeed(const DeviceFeed&) = delete;
  DeviceFeed& operator=(const DeviceFeed&) = delete;

  // Engine thread. Neither waits nor allocates.

  /// A block of program at `nowNs` of the steady clock. The sound of a frame is pushed before the frame.
  virtual void pushSound(StereoSpan sound, qint64 nowNs) = 0;
  virtual void pushFrame(const FrameRef& frame) = 0;

  // Thread of the device.

  /// A pipeline begins, which wants pictures from here on.
  virtual void begin() = 0;
  /// Gives the pipeline what there is and what it has room for.
  virtual void feed(DevicePipeline& pipeline) = 0;
  /// The pipeline has gone; lets all frames go.
  virtual void end() = 0;

  /// Frames that the device did not take in time. Any thread.
  virtual qint64 droppedFrames() const = 0;
};

}  // namespace korvia

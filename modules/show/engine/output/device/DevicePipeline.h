// One run of a device: pictures of program, and where the device has it its sound, through converters into
// the element of the device. Used on the thread of a DeviceOutput.
#pragma once
#include <functional>
#include <memory>

#include "DeviceSettings.h"
#include "engine/frame/FramePool.h"
#include "engine/output/OutputPipeline.h"
#include "engine/output/PipelineInlet.h"

namespace korvia {

class DevicePipeline {
 public:
  /// `wake` is called from any thread when hasRoom() or hasFailed() may have changed.
  DevicePipeline(const DeviceSettings& settings, const DevicePicture& picture, std::function<void()> wake);
  /// Stops; waits for a device that hangs.
  ~DevicePipeline();
  DevicePipeline(const DevicePipeline&) = delete;
  DevicePipeline& operator=(const DevicePipeline&) = delete;

  /// Opens the device; `path` is that of a virtual camera. False, with the reason in failure(), when it is
  /// not there, is in use, or its plugin is not installed.
  bool open(const QString& path);
  bool hasFailed() const { return pipeline_.hasFailed() || pipeline_.isEnded(); }
  QString failure() const;
  /// The device has taken a picture.
  bool isUp() const { return pictures_.taken() > 1; }

  /// Whether a picture can be pushed, and whether sound can.
  bool hasRoom() const { return pictures_.hasRoom(); }
  bool hasRoomForSound() const { return sound_.hasRoom(); }
  /// `index` counts pictures of the device's rate from 0 and gives the time stamp. Any size fits; null is
  /// black.
  void pushPicture(const FrameRef& frame, qint64 index);
  /// `samples` pairs of left and right; `first` counts samples from 0 and gives the time stamp.
  void pushSound(const float* pairs, int samples, qint64 first);

 private:
  bool linkVirtualCamera(const QString& path);
  bool linkNdi();
  bool linkSdi();
  GstElement* addPictures();
  GstElement* addSound();
  bool isInstalled(const char* element, const QString& missing);
  bool openSink(GstElement* sink, const QString& failure);

  const DeviceSettings settings_;
  const DevicePicture picture_;
  FramePool scaled_;
  QString closedReason_;  // why an element does not open that does not tell it
  OutputPipeline pipeline_;
  PipelineInlet pictures_{pipeline_};
  PipelineInlet sound_{pipeline_};
};

}  // namespace korvia

// One output to a device: a virtual camera, NDI or an SDI card. A device that is missing, fails or takes
// nothing is tried again every few seconds; the log tells of it once. Made and fed on the engine thread,
// which it never holds up; the device is opened and fed on its own thread.
#pragma once
#include <QString>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

#include "DeviceFeed.h"
#include "DeviceSettings.h"
#include "tagKorviaShowOutputReport.h"

namespace korvia {

class DeviceOutput {
 public:
  struct Times {
    std::chrono::milliseconds retry{5000};
    /// A device that takes no picture for so long is closed and tried again.
    std::chrono::milliseconds stall{5000};
    /// After this time a device that does not close is left behind.
    std::chrono::milliseconds end{2000};
  };
  /// The path of the virtual camera, empty without one. Called on the device's thread, also after the
  /// DeviceOutput has gone.
  using FindCamera = std::function<QString()>;
  /// True while an output has the device open. An output that follows another one on the same device waits.
  using InUse = std::shared_ptr<std::atomic<bool>>;

  DeviceOutput(const DeviceSettings& settings, const DevicePicture& picture, std::unique_ptr<DeviceFeed> feed,
               FindCamera findCamera, InUse inUse, Times times);
  /// Waits until the device is closed or left behind.
  ~DeviceOutput();
  DeviceOutput(const DeviceOutput&) = delete;
  DeviceOutput& operator=(const DeviceOutput&) = delete;

  /// Begins to close the device, without waiting for that.
  void stop();

  /// As in DeviceFeed.
  void pushSound(StereoSpan sound, qint64 nowNs);
  void pushFrame(const FrameRef& frame);

  /// Any thread.
  tagKorviaShowTargetReport report() const;

 private:
  struct Share;
  static void run(const std::shared_ptr<Share>& share);

  const std::shared_ptr<Share> share_;
};

}  // namespace korvia

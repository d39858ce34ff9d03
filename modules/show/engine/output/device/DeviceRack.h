// The outputs to devices: the virtual camera, NDI and SDI. Starts, feeds and ends them. Engine thread, except
// reports().
#pragma once
#include <QList>
#include <array>
#include <memory>
#include <optional>

#include "DeviceOutput.h"
#include "ThreadSafety.h"
#include "VirtualCamera.h"
#include "engine/Janitor.h"
#include "engine/ShowFormat.h"

namespace korvia {

class DeviceRack {
 public:
  explicit DeviceRack(Janitor& janitor, DeviceOutput::FindCamera findCamera = findVirtualCamera,
                      DeviceOutput::Times times = {});

  /// Begins what was started before. The console starts the outputs after the show is open; an output that is
  /// started earlier waits for the show.
  void open(const ShowFormat& format);
  /// Ends all outputs and forgets their settings.
  void close();

  // Events. A start of an output that runs with the same settings changes nothing, since the console starts
  // all of them each time that the operator accepts the settings. Other settings end it and begin anew.
  void startVirtualCamera(int, const tagKorviaShowOutputParam& param) {
    start(DeviceKind::VirtualCamera, param);
  }
  void stopVirtualCamera(int) { stop(DeviceKind::VirtualCamera); }
  void startNdi(int, const tagKorviaShowOutputParam& param) { start(DeviceKind::Ndi, param); }
  void stopNdi(int) { stop(DeviceKind::Ndi); }
  void startSdi(int, const tagKorviaShowOutputParam& param) { start(DeviceKind::Sdi, param); }
  void stopSdi(int) { stop(DeviceKind::Sdi); }

  /// Pushes one program frame `count` times, after the sound of all of them. Neither waits nor allocates.
  void push(const FrameRef& frame, int count);
  void pushSound(StereoSpan sound);

  /// Of the outputs that are on, in the order of the kinds. Any thread.
  QList<tagKorviaShowTargetReport> reports() const;

 private:
  struct Place {
    std::optional<DeviceSettings> wanted;
    std::unique_ptr<DeviceOutput> output;
    /// Why the output cannot work with these settings.
    QString failure;
    DeviceOutput::InUse inUse = std::make_shared<std::atomic<bool>>(false);
  };

  void start(DeviceKind kind, const tagKorviaShowOutputParam& param);
  void stop(DeviceKind kind);
  void begin(Place& place);
  void end(Place& place);

  Janitor& janitor_;
  const DeviceOutput::FindCamera findCamera_;
  const DeviceOutput::Times times_;
  std::optional<ShowFormat> format_;  // of the open show
  mutable Mutex mutex_;
  std::array<Place, kDeviceKinds> places_;  // written under mutex_, which the other threads hold to read
};

}  // namespace korvia

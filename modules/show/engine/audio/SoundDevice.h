// Plays a bus on a sound device. The device has a clock of its own, which a DriftCorrector follows. A device
// that is not there or fails means silence; it is tried again every few seconds. The delay from the mixer to
// the device's own buffer is that of delaySamples(). Made and fed on the engine thread, which it never holds
// up; devices are opened and played on its own threads.
#pragma once
#include <gst/gst.h>

#include <QString>
#include <chrono>
#include <functional>
#include <memory>
#include <utility>

#include "FrameRate.h"
#include "StereoSpan.h"
#include "engine/audio/DriftCorrector.h"

namespace korvia {

class SoundDevice {
 public:
  /// Makes the element that plays, with a reference for the caller; null while the device is not there.
  /// Called on the device's thread, also after the SoundDevice has gone.
  using MakeSink = std::function<GstElement*()>;
  struct Times {
    std::chrono::milliseconds retry{5000};
    /// After this time a device that does not close is left behind.
    std::chrono::milliseconds end{2000};
  };

  /// `label` names the bus and the device in the log. `rate` is that of the show.
  SoundDevice(const QString& label, FrameRate rate, MakeSink makeSink, Times times);
  SoundDevice(const QString& label, FrameRate rate, MakeSink makeSink)
      : SoundDevice(label, rate, std::move(makeSink), Times()) {}
  /// Waits until the device is closed or left behind.
  ~SoundDevice();
  SoundDevice(const SoundDevice&) = delete;
  SoundDevice& operator=(const SoundDevice&) = delete;

  /// A mixed block of at most kBlockSamplesMax. Neither waits nor allocates.
  void push(StereoSpan block);

  // Any thread.
  bool isPlaying() const;
  DriftCorrector::Figures figures() const;

  /// From a push to a pull: the sound of a frame, that of a pull, and 20 ms for the jitter of both.
  static int delaySamples(FrameRate rate);

 private:
  struct Share;
  static void run(const std::shared_ptr<Share>& share);

  const std::shared_ptr<Share> share_;
};

}  // namespace korvia

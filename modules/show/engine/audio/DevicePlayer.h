// One run of a sound device: a pipeline into its sink, which takes the sound of a DriftCorrector at the pace
// of the device. Made and destroyed on the thread of a SoundDevice; a GStreamer thread pulls the sound.
#pragma once
#include <gst/app/gstappsrc.h>

#include <functional>

#include "engine/audio/DriftCorrector.h"
#include "engine/output/OutputPipeline.h"

namespace korvia {

class DevicePlayer {
 public:
  /// Samples of a pull: 10 ms.
  static constexpr int kPullSamples = kSampleRate / 100;
  /// At its start a device fills its own buffer without a pause. It gets silence for that, since such a rush
  /// of pulls says nothing about its clock.
  static constexpr int kSilentPulls = 20;

  /// `sound` must outlive the player. `wake` is called from any thread when hasFailed() may have changed.
  DevicePlayer(DriftCorrector& sound, std::function<void()> wake);
  ~DevicePlayer();
  DevicePlayer(const DevicePlayer&) = delete;
  DevicePlayer& operator=(const DevicePlayer&) = delete;

  /// Takes over the reference to `sink` and begins to play. False, with the reason in failure(), when that
  /// cannot work.
  bool start(GstElement* sink);
  bool hasFailed() const { return pipeline_.hasFailed() || pipeline_.isEnded(); }
  QString failure() const { return pipeline_.failure(); }

 private:
  static void onNeedData(GstAppSrc* source, guint bytes, gpointer self);
  void feed(GstAppSrc* source);

  DriftCorrector& sound_;
  OutputPipeline pipeline_;
  int silentPulls_ = kSilentPulls;  // streaming thread; pulls that are still to be silent
};

}  // namespace korvia

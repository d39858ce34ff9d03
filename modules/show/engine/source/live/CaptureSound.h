// The sound device of a DeviceInput, in a pipeline of its own, so that a device that fails leaves the
// pictures alone. Its own thread opens it and tries again when it fails. Control thread of the source:
// constructor and destructor; GStreamer's threads: the receiver.
#pragma once
#include <memory>
#include <thread>

#include "CaptureSettings.h"
#include "LiveInput.h"
#include "LivePipeline.h"
#include "ThreadSafety.h"

namespace korvia {

class CaptureSound final : private LiveReceiver {
 public:
  /// `baseNs`: the time of the system's clock that is the stamp 0, as for the pictures.
  CaptureSound(const CaptureSettings& settings, std::int64_t baseNs, LiveReceiver& receiver);
  /// May block. No call of the receiver runs any more when it returns.
  ~CaptureSound() override;
  CaptureSound(const CaptureSound&) = delete;
  CaptureSound& operator=(const CaptureSound&) = delete;

 private:
  void run() EXCLUDES(mutex_);
  bool open(LivePipeline& pipeline, QString& reason);
  /// False when closed meanwhile.
  bool waitFor(std::int64_t ns) EXCLUDES(mutex_);
  void noteFailure(const QString& reason);

  void onPicture(FrameRef, std::int64_t, std::int64_t) override {}
  void onSound(StereoSpan sound, std::int64_t stampNs, std::int64_t heldNs) override;
  void onHeldBack() override {}
  void onStampsRestart() override {}
  void onLost(const QString& reason) override EXCLUDES(mutex_);

  const CaptureSettings settings_;
  const std::int64_t baseNs_;
  LiveReceiver& receiver_;
  QString loggedReason_;  // own thread

  Mutex mutex_;
  ConditionVariable wake_;
  bool closing_ GUARDED_BY(mutex_) = false;
  bool lost_ GUARDED_BY(mutex_) = false;
  QString reason_ GUARDED_BY(mutex_);
  std::thread thread_;
};

}  // namespace korvia

// Feeds a device that has no clock of its own: each program frame leaves when it is on air, with its sound. A
// device that falls behind loses frames. Threads as in DeviceFeed.
#pragma once
#include <vector>

#include "DeviceFeed.h"
#include "ThreadSafety.h"
#include "engine/output/FrameQueue.h"
#include "engine/output/SoundQueue.h"

namespace korvia {

class ShowPacedFeed final : public DeviceFeed {
 public:
  enum class Sound { None, Program };

  ShowPacedFeed(FrameRate rate, Sound sound);

  void pushSound(StereoSpan sound, qint64 nowNs) override;
  void pushFrame(const FrameRef& frame) override;
  void begin() override;
  void feed(DevicePipeline& pipeline) override;
  void end() override;
  qint64 droppedFrames() const override;

 private:
  void clear() REQUIRES(mutex_);
  void feedSound(DevicePipeline& pipeline);

  const FrameRate rate_;
  const Sound soundWanted_;

  // Engine thread; counted from the start of the output.
  qint64 frames_ = 0;
  qint64 samples_ = 0;

  // Thread of the device.
  qint64 firstFrame_ = -1;  // of the pipeline; -1 before it has come
  qint64 soundEnd_ = 0;     // samples since the first frame that the pipeline has got
  std::vector<float> pairs_;

  mutable Mutex mutex_;
  FrameQueue queue_ GUARDED_BY(mutex_);
  SoundQueue sound_ GUARDED_BY(mutex_);
  bool accepting_ GUARDED_BY(mutex_) = false;
  qint64 dropped_ GUARDED_BY(mutex_) = 0;
};

}  // namespace korvia

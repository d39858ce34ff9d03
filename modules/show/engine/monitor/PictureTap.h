// Makes small pictures of program and channels for the sink, as far as it wants them. The engine thread
// leaves frames here, a thread of this class scales them. A frame that comes while that thread works is left
// out.
#pragma once
#include <array>
#include <chrono>
#include <optional>
#include <thread>

#include "IKorviaShowPictureSink.h"
#include "KorviaShowObjectID.h"
#include "ThreadSafety.h"
#include "engine/frame/Frame.h"
#include "engine/monitor/PictureScaler.h"

namespace korvia {

class PictureTap {
 public:
  using Clock = std::chrono::steady_clock;
  /// Media first, then stages; null for a black cell.
  using Channels = std::array<FrameRef, kMediaChannelMax + kStageChannelMax>;

  static constexpr std::chrono::milliseconds kProgramPause{200};
  static constexpr std::chrono::milliseconds kChannelsPause{1000};

  PictureTap() = default;
  ~PictureTap();
  PictureTap(const PictureTap&) = delete;
  PictureTap& operator=(const PictureTap&) = delete;

  /// Null for none. The sink before is not called any more when this returns. Any thread but that of
  /// onPicture().
  void setSink(IKorviaShowPictureSink* sink) EXCLUDES(mutex_);

  /// Whether the picture is due and wanted. Engine thread.
  bool isDue(KorviaShowPicture which, Clock::time_point now) EXCLUDES(mutex_);
  void showProgram(const FrameRef& program) EXCLUDES(mutex_);
  void showChannels(const Channels& channels) EXCLUDES(mutex_);

 private:
  void run();
  void stop() EXCLUDES(mutex_);
  QImage scaledProgram(const Frame& program);
  QImage channelSheet(const Channels& channels);

  std::array<Clock::time_point, 2> due_{};  // engine thread
  Mutex mutex_;
  ConditionVariable wake_;
  IKorviaShowPictureSink* sink_ GUARDED_BY(mutex_) = nullptr;
  FrameRef program_ GUARDED_BY(mutex_);
  std::optional<Channels> channels_ GUARDED_BY(mutex_);
  bool busy_ GUARDED_BY(mutex_) = false;
  bool stop_ GUARDED_BY(mutex_) = false;
  std::thread thread_;           // while there is a sink
  PictureScaler programScaler_;  // thread of the tap
  std::array<PictureScaler, kMediaChannelMax + kStageChannelMax> cellScalers_;
};

}  // namespace korvia

// One film at work: its states, its commands, its pipeline. The film's own control thread runs run();
// commands come from the console thread and return at once; pictures come on GStreamer's threads; pull() is
// the engine thread's. Shared by the film source and its control thread, whichever lives longer.
#pragma once
#include <QString>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

#include "FilmPipeline.h"
#include "FrameTap.h"
#include "RateMeter.h"
#include "Source.h"
#include "StreamTimeline.h"
#include "VideoFrameMaker.h"

namespace korvia {

class FilmPlayer : public FilmPipelineListener {
 public:
  enum class Command { Play, Pause, Stop, Seek };

  FilmPlayer(const SourceContext& context, const QString& path, KorviaShowEndAction endAction,
             int switchChannel);
  ~FilmPlayer() override;

  /// The control thread's work: opens the film and serves it until close().
  void run();
  /// Console thread. `percent` counts for Seek only; the newest seek wins.
  void post(Command command, double percent = 0);
  void setHold(bool hold) { tap_.setHold(hold); }
  /// Returns at once; no notify comes after it, and run() ends as soon as it can.
  void close();

  FrameRef pull(int ticks);

  KorviaShowPlayState state() const { return state_; }
  /// Why the state is Error; empty before.
  QString failureReason() const;
  std::int64_t durationNs() const { return durationNs_; }
  std::int64_t positionNs() const { return positionNs_; }
  std::int64_t framesShown() const { return framesShown_; }
  std::int64_t framesHeld() const { return framesHeld_; }
  const RateMeter& arrivals() const { return arrivals_; }
  FrameSize pictureSize() const { return {pictureWidth_, pictureHeight_}; }

 private:
  using Clock = std::chrono::steady_clock;

  enum class EventKind { Picture, EndOfStream, Drained, Duration, Failure };
  struct Event {
    EventKind kind;
    int segment = 0;
    QString reason;
  };
  struct Request {
    Command command;
    double percent = 0;
  };

  // FilmPipelineListener
  void onPicture(GstSample* sample) override;
  void onOrientation(const char* tag) override;
  void onFlushStart() override;
  void onFlushStop() override;
  void onEndOfStream() override;
  void onDurationChanged() override;
  void onFailure(const QString& reason) override;

  // Control thread.
  void postEvent(Event event);
  bool startPipeline();
  void stopPipeline();
  void handleEvent(const Event& event);
  void handleRequest(const Request& request);
  void handleFirstPicture();
  void handleEndOfStream();
  void handleDrained();
  void handleFailure(const QString& reason);
  void updateDuration();
  void handleTimeouts();
  void play();
  void stop();
  void seekToPercent(double percent);
  bool goTo(std::int64_t positionNs, StreamTimeline::Join join);
  bool restart(StreamTimeline::Join join);
  void notifySwitch();
  std::int64_t lastPictureNs() const;
  std::optional<Clock::time_point> nextDeadline() const;

  const SourceContext context_;
  const QString path_;
  const KorviaShowEndAction endAction_;
  const int switchChannel_;
  FrameTap tap_;
  VideoFrameMaker maker_;  // streaming thread
  RateMeter arrivals_;

  std::atomic<KorviaShowPlayState> state_{NothingSpecial};
  std::atomic<std::int64_t> durationNs_{0};
  std::atomic<std::int64_t> positionNs_{0};
  std::atomic<std::int64_t> startNs_{-1};  // where the first picture stands; streams may begin late
  std::atomic<std::int64_t> framesShown_{0};
  std::atomic<std::int64_t> framesHeld_{0};
  std::atomic<int> pictureWidth_{0};
  std::atomic<int> pictureHeight_{0};

  mutable std::mutex mutex_;
  std::condition_variable wake_;  // with mutex_
  QString failureReason_;         // guarded by mutex_
  std::deque<Event> events_;      // guarded by mutex_
  std::deque<Request> requests_;  // guarded by mutex_
  std::atomic<bool> closing_{false};

  mutable std::mutex timelineMutex_;
  StreamTimeline timeline_;                                 // guarded by timelineMutex_
  StreamTimeline::Join join_ = StreamTimeline::Join::Jump;  // guarded by timelineMutex_
  int segment_ = 0;                                         // guarded by timelineMutex_
  std::int64_t frameDurationNs_ = 0;                        // guarded by timelineMutex_
  std::int64_t segmentStartNs_ = 0;                         // guarded by timelineMutex_

  std::recursive_mutex notifyMutex_;  // held while the sink is called, so that close() is the end of it
  bool mayNotify_ = true;             // guarded by notifyMutex_

  // Control thread only.
  std::unique_ptr<FilmPipeline> pipeline_;
  KorviaShowPlayState wanted_ = Playing;
  std::optional<Clock::time_point> openDeadline_;
  std::optional<Clock::time_point> seekDeadline_;
  std::int64_t seekTargetNs_ = 0;
  int emptySegments_ = 0;
  bool earlyEndLogged_ = false;
};

}  // namespace korvia

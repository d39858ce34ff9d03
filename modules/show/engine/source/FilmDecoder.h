// One film being decoded: its pipeline, its places on the time line, its length. Its pictures go into a queue
// that it shares with the films before and after it. One film at a time is admitted to the queue; the next
// one decodes its first picture and waits with it.
// Made, called and destroyed by the film's control thread, and those calls may block; pictures come on
// GStreamer's threads. Failures, those of the calls too, are told as events.
#pragma once
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>

#include "FilmEvent.h"
#include "FilmPipeline.h"
#include "RateMeter.h"
#include "Source.h"
#include "StreamTimeline.h"
#include "ThreadSafety.h"
#include "VideoFrameMaker.h"
#include "VideoQueue.h"

namespace korvia {

class FilmDecoder : private FilmPipelineListener {
 public:
  using Clock = std::chrono::steady_clock;

  /// Where pictures and events go; lives longer than the film.
  struct Outlet {
    MediaClock& clock;
    VideoQueue& queue;
    RateMeter& arrivals;
    FilmEventSink& sink;
  };
  enum class Admission { AtOnce, Waits };
  /// What becomes of pictures in the queue.
  enum class Queued { Keep, Flush };
  enum class SegmentEnd {
    NoPicture,   ///< the film has never had one
    SoughtBack,  ///< nothing lies behind the place that was sought, so one before it is
    Ended,
  };

  /// `number` marks the film's pictures and events.
  FilmDecoder(const SourceContext& context, const QString& path, int number, const Outlet& outlet,
              Admission admission);
  ~FilmDecoder() override;

  void open();
  /// No further picture goes into the queue; true when some did before.
  bool refusePictures();
  /// For good; no picture comes after it. With Queued::Keep only when the film is not pushing: it is not
  /// admitted, or at its end.
  void close(Queued queued);
  /// The film's first picture stands at `timeNs`, where the film before ends. Once.
  void admit(std::int64_t timeNs);
  /// The next picture is that at `percent` of the duration. Returns its place from the first picture in ns;
  /// none when the film cannot be seeked.
  std::optional<std::int64_t> seekToPercent(double percent);
  /// Goes back to the head; false when the film failed on the way.
  bool rewind();
  /// After the end: goes on with the head without a seam; false when the film is not to be looped.
  bool loop();

  /// After an event of this film.
  void noteFirstPicture();
  SegmentEnd noteEndOfStream();
  void noteFacts();
  /// Ends the waiting for a place that was sought, and fails when no picture came since the film was opened.
  void handleTimeouts(Clock::time_point now);
  std::optional<Clock::time_point> deadline() const;

  int number() const { return number_; }
  const QString& path() const { return path_; }
  bool isOpen() const { return pipeline_ != nullptr; }
  bool isAdmitted() const;
  /// False for events of a segment that was left.
  bool isCurrent(int segment) const;
  bool isNearEnd() const;
  bool hasEnded() const { return ended_; }
  bool isSeeking() const { return seekDeadline_.has_value(); }
  /// False for a FIFO and the like, which can be read only once.
  bool canSeek() const { return pipeline_ && pipeline_->isRegularFile(); }
  /// On the time line: where what was decoded so far ends.
  std::int64_t endNs() const;
  /// 0 when unknown.
  std::int64_t durationNs() const { return durationNs_; }
  FrameSize pictureSize() const;

 private:
  // FilmPipelineListener
  void onPicture(GstSample* sample) override;
  void onOrientation(const char* tag) override;
  void onFlushStart() override;
  void onFlushStop() override;
  void onEndOfStream() override;
  void onDurationChanged() override;
  void onFailure(const QString& reason) override;

  void tell(FilmEvent::Kind kind, int segment = 0, const QString& reason = {}) EXCLUDES(timelineMutex_);
  bool waitForTurn();
  TimedFrame place(FrameRef frame, std::optional<std::int64_t> ptsNs, std::optional<std::int64_t> durationNs)
      REQUIRES(timelineMutex_);
  bool start();
  void beginSegment() REQUIRES(timelineMutex_);
  bool goTo(std::int64_t positionNs, StreamTimeline::Join join);
  bool restart(StreamTimeline::Join join);
  void compareDuration(std::int64_t lastedNs);

  const SourceContext context_;
  const QString path_;
  const int number_;
  const Outlet outlet_;
  VideoFrameMaker maker_;  // streaming thread
  std::atomic<std::int64_t> durationNs_{0};

  mutable Mutex timelineMutex_;
  ConditionVariable turn_;
  StreamTimeline timeline_ GUARDED_BY(timelineMutex_);
  StreamTimeline::Join join_ GUARDED_BY(timelineMutex_) = StreamTimeline::Join::Jump;
  int segment_ GUARDED_BY(timelineMutex_) = 0;
  std::int64_t segmentStartNs_ GUARDED_BY(timelineMutex_) = 0;
  std::int64_t frameDurationNs_ GUARDED_BY(timelineMutex_) = 0;
  // Time stamp of the first picture, since a stream may begin late; negative before it.
  std::int64_t startNs_ GUARDED_BY(timelineMutex_) = -1;
  FrameSize pictureSize_ GUARDED_BY(timelineMutex_);
  bool admitted_ GUARDED_BY(timelineMutex_);
  bool closed_ GUARDED_BY(timelineMutex_) = false;
  bool nearEnd_ GUARDED_BY(timelineMutex_) = false;

  // Control thread only.
  std::unique_ptr<FilmPipeline> pipeline_;
  std::optional<Clock::time_point> openDeadline_;
  std::optional<Clock::time_point> seekDeadline_;
  std::int64_t seekTargetNs_ = 0;
  int emptySegments_ = 0;
  bool ended_ = false;
  bool earlyEndLogged_ = false;
};

}  // namespace korvia

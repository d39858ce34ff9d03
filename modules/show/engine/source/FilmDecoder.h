// Decodes one film: it owns the pipeline, the time line and the duration of the film. Pictures and sound go
// into queues that the film shares with those before and after it. One film at a time is admitted to the
// queues; the next one decodes its first picture and waits. A film ends with its last picture: sound that
// lasts longer is left out. The film's control thread makes, calls and destroys the decoder, and those calls
// may block; pictures and sound come on GStreamer's threads. All failures, also those of calls, are reported
// as events, but for those of the sound alone, which are logged.
#pragma once
#include <QString>
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>

#include "AudioQueue.h"
#include "FilmPipeline.h"
#include "Source.h"
#include "StereoSoundMaker.h"
#include "StreamTimeline.h"
#include "ThreadSafety.h"
#include "VideoFrameMaker.h"
#include "VideoQueue.h"

namespace korvia {

/// An event of a film, which any thread sends to the film's control thread.
struct FilmEvent {
  enum class Kind {
    Picture,      ///< the first picture of a segment is decoded
    NearEnd,      ///< the film that follows has to be opened now
    EndOfStream,  ///< all pictures of a segment are in the queue, and their sound
    Facts,        ///< duration or picture size may have changed
    Failure,
    Shown,    ///< the picture on show belongs to another film than the one before
    Drained,  ///< the last picture was shown for its whole duration
  };

  Kind kind;
  int film = 0;  ///< FilmDecoder::number
  int segment = 0;
  QString reason;  ///< of a failure

  friend bool operator==(const FilmEvent&, const FilmEvent&) = default;
};

class FilmEventSink {
 public:
  virtual ~FilmEventSink() = default;
  /// Any thread; returns at once.
  virtual void onFilmEvent(FilmEvent event) = 0;
};

class FilmDecoder : private FilmPipelineListener {
 public:
  using Clock = std::chrono::steady_clock;

  /// Receives pictures, sound and events; outlives the film.
  struct Outlet {
    MediaClock& clock;
    VideoQueue& queue;
    AudioQueue& sound;
    std::atomic<std::int64_t>& framesDecoded;
    const std::atomic<DecodeRate>& decodeRate;
    FilmEventSink& sink;
  };
  /// Whether pictures go into the queue at once or wait for admit().
  enum class Admission { AtOnce, Waits };
  /// Whether the pictures in the queue stay.
  enum class Queued { Keep, Flush };
  enum class SegmentEnd {
    NoPicture,   ///< the film has had no picture at all
    SoughtBack,  ///< no picture follows the place that was sought, so an earlier one is sought
    Ended,
  };

  /// `number` identifies the film in its pictures and events.
  FilmDecoder(const SourceContext& context, const QString& path, int number, const Outlet& outlet,
              Admission admission);
  ~FilmDecoder() override;

  void open();
  /// Puts no more pictures and no more sound into the queues. Returns whether pictures had gone in before.
  bool refusePictures();
  /// Ends the film for good; no picture comes after it. Queued::Keep is allowed only while the film does not
  /// push: before it is admitted, or at its end.
  void close(Queued queued);
  /// Lets pictures and sound into the queues, the first picture at `timeNs`, where the film before ends.
  /// Called once.
  void admit(std::int64_t timeNs);
  /// Seeks to `percent` of the duration. Returns that place in ns from the first picture; none when the film
  /// cannot be seeked.
  std::optional<std::int64_t> seekToPercent(double percent);
  /// Goes back to the beginning; false when the film fails in doing so.
  bool rewind();
  /// Called at the end: continues with the beginning, without a seam; false when the film cannot be looped.
  bool loop();

  /// Called for an event of this film.
  void noteFirstPicture();
  SegmentEnd noteEndOfStream();
  void noteFacts();
  /// Stops waiting for a place that was sought, and fails when no picture has come since the film was opened.
  void handleTimeouts(Clock::time_point now);
  std::optional<Clock::time_point> deadline() const;

  int number() const { return number_; }
  const QString& path() const { return path_; }
  bool isOpen() const { return pipeline_ != nullptr; }
  bool isAdmitted() const;
  /// False for events of a segment that a seek or a loop has left.
  bool isCurrent(int segment) const;
  bool isNearEnd() const;
  bool hasEnded() const { return ended_; }
  bool isSeeking() const { return seekDeadline_.has_value(); }
  /// False for a FIFO or a device, which can be read only once.
  bool canSeek() const { return pipeline_ && pipeline_->isRegularFile(); }
  /// The end of what is decoded so far, on the time line of the clock.
  std::int64_t endNs() const;
  /// 0 when unknown.
  std::int64_t durationNs() const { return durationNs_; }
  FrameSize pictureSize() const;
  /// The duration of a picture by the film's frame rate; 0 before the first picture.
  std::int64_t frameDurationNs() const;

 private:
  // FilmPipelineListener
  void onPicture(GstSample* sample) override;
  DecodeRate decodeRate() override;
  void onOrientation(const char* tag) override;
  void onFlushStart() override;
  void onFlushStop() override;
  void onEndOfStream() override;
  void onSoundFound(bool hasSound) override;
  void onSound(GstSample* sample) override;
  void onSoundFlushStart() override;
  void onSoundFlushStop() override;
  void onSoundEnd() override;
  void onSoundFailure(const QString& reason) override;
  void onDurationChanged() override;
  void onFailure(const QString& reason) override;

  void tell(FilmEvent::Kind kind, int segment = 0, const QString& reason = {}) EXCLUDES(timelineMutex_);
  bool waitForTurn();
  void flushQueues();
  void beginSoundSegment() REQUIRES(timelineMutex_);
  void endSound() EXCLUDES(timelineMutex_);
  /// Tells of the end when the pictures have ended and their sound is in the queue too.
  void tellEnd() EXCLUDES(timelineMutex_);
  bool soundIsComplete() const REQUIRES(timelineMutex_);
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
  VideoFrameMaker maker_;        // streaming thread of the pictures
  StereoSoundMaker soundMaker_;  // streaming thread of the sound
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
  bool picturesEnded_ GUARDED_BY(timelineMutex_) = false;
  bool endTold_ GUARDED_BY(timelineMutex_) = false;

  enum class SoundState { None, Comes, Ended };
  SoundState soundState_ GUARDED_BY(timelineMutex_) = SoundState::None;
  bool hasSound_ GUARDED_BY(timelineMutex_) = false;
  bool soundHasCome_ GUARDED_BY(timelineMutex_) = false;
  StreamTimeline soundTimeline_ GUARDED_BY(timelineMutex_);
  // From time in the film to the time line of the clock; none while it depends on a picture that has not
  // come.
  std::optional<std::int64_t> soundOffsetNs_ GUARDED_BY(timelineMutex_);
  AudioQueue::Part soundPart_ GUARDED_BY(timelineMutex_) = 0;
  std::int64_t soundDurationNs_ GUARDED_BY(timelineMutex_) = 0;  // of the last sample that came
  std::int64_t soundEndNs_ GUARDED_BY(timelineMutex_) = 0;       // of what is in the queue

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

// Plays the films of a sequence: states, commands, the end, and the seam between one film and the next. All
// films share one clock and one queue. The film that follows is opened while the present one still plays, and
// goes on where that one ends without a missing or a repeated picture; one that cannot be opened is skipped
// with a line in the log. When the present film itself fails, the state is Error. The control thread runs
// run(); commands come from the console thread and return at once; pull() is the engine thread's. Shared by
// the source and its control thread, whichever lives longer.
#pragma once
#include <QString>
#include <atomic>
#include <chrono>
#include <deque>
#include <memory>
#include <optional>

#include "FilmDecoder.h"
#include "FilmEvent.h"
#include "FilmSequence.h"
#include "RateMeter.h"
#include "Source.h"
#include "ThreadSafety.h"
#include "VideoQueue.h"

namespace korvia {

class FilmTransport : public FilmEventSink {
 public:
  enum class Command { Play, Pause, Stop, Seek };

  /// `switchChannel` is what the sink is notified of when the last film has ended; none for no notify.
  FilmTransport(const SourceContext& context, std::unique_ptr<FilmSequence> sequence,
                std::optional<int> switchChannel);
  ~FilmTransport() override;

  /// The control thread's work: opens the present film and serves all until close().
  void run();
  /// Console thread. `percent` counts for Seek only; the newest seek wins.
  void post(Command command, double percent = 0);
  void setHold(bool hold) { clock_.setHold(hold); }
  /// Returns at once; no notify comes after it, and run() ends as soon as it can.
  void close();

  FrameRef pull(int ticks);

  void onFilmEvent(FilmEvent event) override;

  KorviaShowPlayState state() const { return state_; }
  /// Why the state is Error; empty in other states.
  QString failureReason() const;
  // Of the film on show; 0 when unknown.
  std::int64_t durationNs() const { return durationNs_; }
  std::int64_t positionNs() const { return positionNs_; }
  /// Of the picture on show, or of the one before it while the next one is not there yet.
  std::int64_t pictureDurationNs() const { return pictureDurationNs_; }
  FrameSize pictureSize() const { return {pictureWidth_, pictureHeight_}; }
  std::int64_t framesShown() const { return framesShown_; }
  std::int64_t framesHeld() const { return framesHeld_; }
  std::int64_t framesSkipped() const { return queue_.figures().dropped; }
  const RateMeter& arrivals() const { return arrivals_; }

 private:
  struct Request {
    Command command;
    double percent = 0;
  };

  // Control thread.
  bool isReady() const REQUIRES(mutex_);
  std::unique_ptr<FilmDecoder> makeFilm(const QString& path, FilmDecoder::Admission admission);
  FilmDecoder* filmOf(int number) const;
  void handleEvent(const FilmEvent& event);
  void handleFilmEvent(FilmDecoder& film, const FilmEvent& event);
  void handleFirstPicture(FilmDecoder& film);
  void handleEndOfStream(FilmDecoder& film);
  void handleShown(int number);
  void handleDrained();
  void handleFailure(const FilmDecoder& film, const QString& reason);
  void setFailureReason(const QString& reason) EXCLUDES(mutex_);
  void handleRequest(const Request& request);
  /// A film that failed is opened anew by play; stop takes the error away.
  void handleRequestAfterFailure(const Request& request);
  void handleTimeouts();
  void continueSequence();
  void publishFacts();
  void play();
  void pause();
  void stop();
  bool rewind();
  void seekToPercent(double percent);
  void dropAdmitted();
  void closeFilms();
  void notifySwitch() EXCLUDES(mutex_);
  std::optional<FilmDecoder::Clock::time_point> nextDeadline() const;

  const SourceContext context_;
  const std::unique_ptr<FilmSequence> sequence_;  // control thread
  const std::optional<int> switchChannel_;
  MediaClock clock_;
  VideoQueue queue_;
  RateMeter arrivals_;

  std::atomic<KorviaShowPlayState> state_{Opening};
  std::atomic<std::int64_t> durationNs_{0};
  std::atomic<std::int64_t> positionNs_{0};
  std::atomic<std::int64_t> pictureDurationNs_{0};
  std::atomic<std::int64_t> framesShown_{0};
  std::atomic<std::int64_t> framesHeld_{0};
  std::atomic<int> pictureWidth_{0};
  std::atomic<int> pictureHeight_{0};
  int shownFilm_ = 0;  // engine thread

  mutable Mutex mutex_;
  ConditionVariable wake_;
  QString failureReason_ GUARDED_BY(mutex_);
  std::deque<FilmEvent> events_ GUARDED_BY(mutex_);
  std::deque<Request> requests_ GUARDED_BY(mutex_);
  std::atomic<bool> closing_{false};

  RecursiveMutex notifyMutex_;  // held while the sink is called, so that close() is the end of it
  bool mayNotify_ GUARDED_BY(notifyMutex_) = true;

  // Control thread only.
  std::unique_ptr<FilmDecoder> present_;  // on show
  std::unique_ptr<FilmDecoder> next_;     // opening, waiting, or in the queue behind the present one
  int lastNumber_ = 0;
  int skipped_ = 0;  // films after the present one that could not be opened
  KorviaShowPlayState wanted_ = Playing;
};

}  // namespace korvia

// Plays the films of a sequence: state, commands, the end, and the seam between two films. All films share
// one clock, one queue of pictures and one of sound. The next film is opened while the present one still
// plays, and continues where that one ends without a missing or a repeated picture. A film that cannot be
// opened, or that fails later, is skipped with a line in the log; when no other film is left to play, the
// state is Error. The control thread calls run(), the engine thread pull() and pullSound(); commands come
// from the console thread and return at once. The source and its control thread share the object.
#pragma once
#include <QSet>
#include <QString>
#include <atomic>
#include <chrono>
#include <deque>
#include <memory>
#include <optional>

#include "AudioQueue.h"
#include "FilmDecoder.h"
#include "FilmSequence.h"
#include "RateMeter.h"
#include "Source.h"
#include "ThreadSafety.h"
#include "VideoQueue.h"

namespace korvia {

class FilmTransport : public FilmEventSink {
 public:
  /// Step goes to another film of the sequence, round its ends. What stands still stays so, at the first
  /// picture of that film.
  enum class Command { Play, Pause, Stop, Seek, Step };

  /// `switchChannel` is passed to the sink when the last film has ended; none for no notify.
  FilmTransport(const SourceContext& context, const FilmSequence& sequence, std::optional<int> switchChannel);
  ~FilmTransport() override;

  /// The control thread's work: opens the present film and handles events and commands until close().
  void run();
  /// `value` is the percent of a Seek and the number of films of a Step, negative to go back. A seek replaces
  /// one that waits directly before it, and steps add up. Console thread.
  void post(Command command, double value = 0);
  void setHold(bool hold) { clock_.setHold(hold); }
  /// Any thread.
  void setDecodeRate(DecodeRate rate) { decodeRate_ = rate; }
  /// Returns at once. No notify comes after it, and run() ends as soon as it can.
  void close();

  FrameRef pull(int ticks);
  bool pullSound(StereoSpan out) { return sound_.pull(out); }

  void onFilmEvent(FilmEvent event) override;

  KorviaShowPlayState state() const { return state_; }
  /// Why the state is Error; empty in other states.
  QString failureReason() const;
  /// Of the present film, from 0.
  int filmIndex() const { return filmIndex_; }
  // Of the film on show; 0 when unknown.
  std::int64_t durationNs() const { return durationNs_; }
  std::int64_t positionNs() const { return positionNs_; }
  /// Of the picture on show; until the next picture is known, of the picture before it.
  std::int64_t pictureDurationNs() const { return pictureDurationNs_; }
  /// Pictures a second by the frame rate of the film; that of the show while the film's is unknown.
  float nominalRate() const { return nominalRate_; }
  FrameSize pictureSize() const { return {pictureWidth_, pictureHeight_}; }
  std::int64_t framesShown() const { return framesShown_; }
  std::int64_t framesHeld() const { return framesHeld_; }
  std::int64_t framesSkipped() const { return queue_.figures().dropped; }
  int framesQueued() const { return queue_.size(); }
  std::int64_t samplesQueued() const { return sound_.queuedSamples(); }
  std::int64_t framesDecoded() const { return framesDecoded_; }
  /// Pictures that leave the queue, shown or skipped. They come one by one, where those of the decoder come
  /// in bursts.
  float framesPerSecond() const { return arrivals_.perSecond(); }
  float samplesPerSecond() const { return soundArrivals_.perSecond(); }
  /// Time stamp of the picture less that of the sound; 0 while one of them is missing.
  std::int64_t videoAudioDriftNs() const { return videoAudioDriftNs_; }

 private:
  struct Request {
    Command command;
    double value = 0;
  };
  enum class Failed { Opening, Playing };

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
  void handleFailure(FilmDecoder& film, const QString& reason);
  /// Goes on with another film after a failure of the present one; false when none is left.
  bool playOn(Failed failed);
  void setFailureReason(const QString& reason) EXCLUDES(mutex_);
  void handleRequest(const Request& request);
  /// After a failure, play opens the film anew, and stop clears the error.
  void handleRequestAfterFailure(const Request& request);
  void handleTimeouts();
  void continueSequence();
  void endAt(std::int64_t timeNs);
  void publishFacts();
  void play();
  void pause();
  void stop();
  void playFromTheFirst();
  void step(int films);
  /// Opens the present film of the sequence in place of what is open.
  void openPresent();
  bool rewind();
  void seekToPercent(double percent);
  void dropAdmitted();
  void closeFilms();
  void notifySwitch() EXCLUDES(mutex_);
  std::optional<FilmDecoder::Clock::time_point> nextDeadline() const;

  const SourceContext context_;
  const std::optional<int> switchChannel_;
  MediaClock clock_;
  VideoQueue queue_;
  AudioQueue sound_;
  RateMeter arrivals_;
  RateMeter soundArrivals_;

  std::atomic<DecodeRate> decodeRate_{DecodeRate::Full};
  std::atomic<KorviaShowPlayState> state_{Opening};
  std::atomic<std::int64_t> durationNs_{0};
  std::atomic<std::int64_t> positionNs_{0};
  std::atomic<std::int64_t> pictureDurationNs_{0};
  std::atomic<std::int64_t> videoAudioDriftNs_{0};
  std::atomic<std::int64_t> framesDecoded_{0};
  std::atomic<std::int64_t> framesShown_{0};
  std::atomic<std::int64_t> framesHeld_{0};
  std::atomic<int> pictureWidth_{0};
  std::atomic<int> pictureHeight_{0};
  std::atomic<int> filmIndex_{0};
  std::atomic<float> nominalRate_;
  int shownFilm_ = 0;  // engine thread

  mutable Mutex mutex_;
  ConditionVariable wake_;
  QString failureReason_ GUARDED_BY(mutex_);
  std::deque<FilmEvent> events_ GUARDED_BY(mutex_);
  std::deque<Request> requests_ GUARDED_BY(mutex_);
  std::atomic<bool> closing_{false};

  // Held while the sink is called, so that close() waits for that call. The sink may call close() in turn.
  RecursiveMutex notifyMutex_;
  bool mayNotify_ GUARDED_BY(notifyMutex_) = true;

  // Control thread only.
  FilmSequence sequence_;
  std::unique_ptr<FilmDecoder> present_;  // on show
  // Opens, waits to be admitted, or has pictures in the queue behind those of the present one.
  std::unique_ptr<FilmDecoder> next_;
  int lastNumber_ = 0;
  int skipped_ = 0;           // films after the present one that could not be opened
  int failures_ = 0;          // of present films, since one has played to its end
  int stepDirection_ = 1;     // to the film that is tried when one cannot be opened
  QSet<QString> unplayable_;  // so that a list that goes round logs the failure of a film once
  KorviaShowPlayState wanted_ = Playing;
};

}  // namespace korvia

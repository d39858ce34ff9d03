// Plays a live source: opens its input, opens it again when it is lost, and puts what comes in step. The
// control thread calls run(), the engine thread pull() and pullSound(); commands come from the console thread
// and return at once. The source and its threads share the object.
#pragma once
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

#include "LiveConnection.h"
#include "ThreadSafety.h"
#include "engine/source/LiveAudioQueue.h"
#include "engine/source/LiveClock.h"
#include "engine/source/RateMeter.h"
#include "engine/source/Source.h"
#include "engine/source/VideoQueue.h"

namespace korvia {

class LiveTransport : public LiveSink, public std::enable_shared_from_this<LiveTransport> {
 public:
  LiveTransport(const SourceContext& context, const LiveSettings& settings, LiveInputMaker maker);
  ~LiveTransport() override;

  /// The control thread's work, until close().
  void run();

  void play();
  void pause();
  void stop();
  void setHold(bool hold);
  /// Returns at once; run() ends as soon as it can.
  void close();

  FrameRef pull(int ticks);
  bool pullSound(StereoSpan out) { return sound_.pull(out); }

  // Any thread.
  KorviaShowPlayState state() const { return state_; }
  /// Whether an input is open that has not delivered yet.
  bool isConnecting() const { return connecting_; }
  bool neverOpens() const { return !settings_.neverOpens.isEmpty(); }
  /// Why the state is Error; empty in other states.
  QString failureReason() const;
  float nominalRate() const { return 1e9F / static_cast<float>(context_.rate.nsOf(1)); }
  /// Pictures that arrive; packets of sound for an input that has no picture.
  float receivedRate() const;
  float samplesPerSecond() const { return soundArrivals_.perSecond(); }
  std::int64_t framesShown() const { return framesShown_; }
  std::int64_t pictureDurationNs() const { return pictureDurationNs_; }
  /// Adds what it knows.
  void fill(SourceFigures& figures) const;

  void onLivePicture(FrameRef picture, std::int64_t stampNs, std::int64_t arrivalNs) override;
  void onLiveSound(StereoSpan sound, std::int64_t stampNs, std::int64_t arrivalNs) override;
  std::optional<std::int64_t> liveShownNs(std::int64_t stampNs) const override {
    return clock_.shownNs(stampNs);
  }
  void onLiveStampsRestart() override;
  void onLiveChange() override;

 private:
  // Control thread.
  /// Why the open connection has to be closed; none while it may stay. Empty when the operator wants it.
  std::optional<QString> reasonToClose() const EXCLUDES(mutex_);
  /// Tells the operator that nobody sends, while the input waits.
  void tellLongWait() EXCLUDES(mutex_);
  void connect() EXCLUDES(mutex_);
  void disconnect() EXCLUDES(mutex_);
  void noteFailure(const QString& reason) EXCLUDES(mutex_);
  /// Notes that the open connection delivers.
  void settle() EXCLUDES(mutex_);
  bool isSteady() const;
  /// A loss is logged once, whatever the tries after it fail by, since a day of them would push everything
  /// else out of the log.
  void logFailure(const QString& reason);
  void waitForWork() EXCLUDES(mutex_);

  void want(KorviaShowPlayState state) EXCLUDES(mutex_);
  void applyHold() REQUIRES(mutex_);

  const SourceContext context_;
  const LiveSettings settings_;
  const LiveInputMaker maker_;
  LiveClock clock_;
  VideoQueue queue_;
  LiveAudioQueue sound_;
  RateMeter arrivals_;
  RateMeter soundArrivals_;
  RateMeter soundPackets_;

  std::atomic<KorviaShowPlayState> state_{Opening};
  std::atomic<bool> connecting_{true};
  std::atomic<bool> hasPicture_{false};
  std::atomic<bool> soundCame_{false};  // since the last tick
  std::atomic<std::int64_t> framesReceived_{0};
  std::atomic<std::int64_t> framesShown_{0};
  std::atomic<std::int64_t> connections_{0};  // that have delivered
  std::atomic<std::int64_t> pictureDurationNs_{0};
  std::atomic<int> pictureWidth_{0};

  mutable Mutex mutex_;
  ConditionVariable wake_;
  KorviaShowPlayState wanted_ GUARDED_BY(mutex_) = Playing;
  bool stopAsked_ GUARDED_BY(mutex_) = false;  // and not yet done, also when a play has come after it
  bool tryNow_ GUARDED_BY(mutex_) = false;
  bool held_ GUARDED_BY(mutex_) = false;
  bool changed_ GUARDED_BY(mutex_) = false;
  int closingInputs_ GUARDED_BY(mutex_) = 0;
  QString failureReason_ GUARDED_BY(mutex_);
  std::atomic<bool> closing_{false};

  // Control thread only.
  std::shared_ptr<LiveConnection> connection_;
  bool settled_ = false;  // it has delivered, and that is noted
  std::int64_t nextTryNs_ = 0;
  std::int64_t waitNs_ = 0;
  QString loggedReason_;
  std::int64_t deliversSinceNs_ = 0;  // of the newest connection that has delivered; 0 for none
  bool unsteady_ = false;
};

}  // namespace korvia

#include "SoundDevice.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "DevicePlayer.h"
#include "ThreadSafety.h"
#include "engine/EngineLog.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

constexpr int kJitterSamples = kSampleRate / 50;
constexpr int kDelayMax = kSampleRate;

}  // namespace

/// Lives until both the SoundDevice and its thread have ended.
struct SoundDevice::Share {
  Share(QString itsLabel, int delay, MakeSink maker, Times itsTimes)
      : label(std::move(itsLabel)), makeSink(std::move(maker)), times(itsTimes), sound(delay) {}

  /// Waits until the device has to be tried again or the player has failed; false when all is to end.
  bool wait(std::chrono::milliseconds time) {
    MutexLock lock(mutex);
    changed.wait_for(lock, time, [this]() REQUIRES(mutex) { return stop || woken; });
    woken = false;
    return !stop;
  }
  void wake() {
    {
      MutexLock lock(mutex);
      woken = true;
    }
    changed.notify_all();
  }
  bool isStopping() {
    MutexLock lock(mutex);
    return stop;
  }
  void setPlaying(bool value) {
    MutexLock lock(mutex);
    playing = value;
  }
  /// Returns when the player has failed or all is to end. A device that was `reported` silent and goes on
  /// playing is reported to be heard again.
  void playUntilItFails(const DevicePlayer& player, QString& reported) {
    setPlaying(true);
    bool isStable = false;
    while (!player.hasFailed() && wait(isStable ? std::chrono::hours(1) : times.retry)) {
      isStable = !player.hasFailed();
      if (isStable && !std::exchange(reported, QString()).isEmpty())
        qCInfo(logEngine, "%s is heard again", qPrintable(label));
    }
    setPlaying(false);
  }

  const QString label;
  const MakeSink makeSink;
  const Times times;
  DriftCorrector sound;
  Mutex mutex;
  ConditionVariable changed;  ///< any of the members below
  bool stop GUARDED_BY(mutex) = false;
  bool woken GUARDED_BY(mutex) = false;
  bool ended GUARDED_BY(mutex) = false;
  bool playing GUARDED_BY(mutex) = false;
};

int SoundDevice::delaySamples(FrameRate rate) {
  const auto frame =
      static_cast<int>(std::min<std::int64_t>(rate.samplesIn(0, 1, kSampleRate) + 1, kDelayMax));
  return std::min(frame + DevicePlayer::kPullSamples + VarispeedBuffer::kReserve + kJitterSamples, kDelayMax);
}

SoundDevice::SoundDevice(const QString& label, FrameRate rate, MakeSink makeSink, Times times)
    : share_(std::make_shared<Share>(label, delaySamples(rate), std::move(makeSink), times)) {
  // Detached, because a sound server may hang for ever.
  std::thread([share = share_] { run(share); }).detach();
}

SoundDevice::~SoundDevice() {
  MutexLock lock(share_->mutex);
  share_->stop = true;
  share_->changed.notify_all();
  Share& share = *share_;
  if (!share.changed.wait_for(lock, share.times.end,
                              [&share]() REQUIRES(share.mutex) { return share.ended; }))
    qCWarning(logEngine, "%s does not close, it is left behind", qPrintable(share.label));
}

void SoundDevice::push(StereoSpan block) {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  share_->sound.push(block, now / std::chrono::nanoseconds(1));
}

bool SoundDevice::isPlaying() const {
  MutexLock lock(share_->mutex);
  return share_->playing;
}

DriftCorrector::Figures SoundDevice::figures() const {
  return share_->sound.figures();
}

void SoundDevice::run(const std::shared_ptr<Share>& share) {
  nameThread("kv-sound");
  runAsBatch();
  // What is logged already: a device that stays away is told of once.
  QString reported;
  const auto report = [&](const QString& reason) {
    if (!share->isStopping() && reason != std::exchange(reported, reason))
      qCWarning(logEngine, "%s is silent : %s", qPrintable(share->label), qPrintable(reason));
  };
  do {
    GstElement* sink = share->makeSink();
    if (!sink) {
      report(QStringLiteral("no such sound device"));
      continue;
    }
    DevicePlayer player(share->sound, [share] { share->wake(); });
    if (player.start(sink))
      share->playUntilItFails(player, reported);
    if (player.hasFailed())
      report(player.failure());
  } while (share->wait(share->times.retry));
  MutexLock lock(share->mutex);
  share->ended = true;
  share->changed.notify_all();
}

}  // namespace korvia

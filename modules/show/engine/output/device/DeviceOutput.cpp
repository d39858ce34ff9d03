#include "DeviceOutput.h"

#include <QDeadlineTimer>
#include <algorithm>
#include <thread>
#include <utility>

#include "ThreadSafety.h"
#include "engine/EngineLog.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"
#include "engine/source/GstInit.h"

namespace korvia {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPoll{100};
constexpr std::chrono::seconds kTellOfDrops{10};

/// Gives the device free for the next output.
class Turn {
 public:
  explicit Turn(std::atomic<bool>& inUse) : inUse_(inUse) {}
  ~Turn() { inUse_ = false; }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

 private:
  std::atomic<bool>& inUse_;
};

int wholeSeconds(Clock::duration time) {
  return static_cast<int>(std::max<qint64>(0, std::chrono::ceil<std::chrono::seconds>(time).count()));
}

}  // namespace

/// Lives until both the DeviceOutput and its thread have ended.
struct DeviceOutput::Share {
  Share(const DeviceSettings& itsSettings, const DevicePicture& itsPicture,
        std::unique_ptr<DeviceFeed> itsFeed, FindCamera finder, InUse use, Times itsTimes)
      : settings(itsSettings),
        label(itsSettings.label()),
        picture(itsPicture),
        feed(std::move(itsFeed)),
        findCamera(std::move(finder)),
        inUse(std::move(use)),
        times(itsTimes) {}

  /// Waits until there is something to do; false when all is to end.
  bool wait(std::chrono::milliseconds time) EXCLUDES(mutex) {
    MutexLock lock(mutex);
    changed.wait_for(lock, time, [this]() REQUIRES(mutex) { return stop || woken; });
    woken = false;
    return !stop;
  }
  bool waitForRetry() EXCLUDES(mutex) {
    MutexLock lock(mutex);
    changed.wait_for(lock, times.retry, [this]() REQUIRES(mutex) { return stop; });
    return !stop;
  }
  void wake() EXCLUDES(mutex) {
    {
      MutexLock lock(mutex);
      woken = true;
    }
    changed.notify_all();
  }
  bool isStopping() EXCLUDES(mutex) {
    MutexLock lock(mutex);
    return stop;
  }
  void setState(KorviaShowTargetState to, const QString& why = {}) EXCLUDES(mutex) {
    MutexLock lock(mutex);
    state = to;
    reason = why;
    since = Clock::now();
  }

  bool takeTurn() EXCLUDES(mutex);
  QString runDevice() EXCLUDES(mutex);
  QString feedUntilItFails(DevicePipeline& pipeline) EXCLUDES(mutex);
  void lose(const QString& why) EXCLUDES(mutex);
  void tellOfDrops();

  const DeviceSettings settings;
  const QString label;
  const DevicePicture picture;
  const std::unique_ptr<DeviceFeed> feed;
  const FindCamera findCamera;
  const InUse inUse;
  const Times times;

  // Thread of the device.
  QString reported;  // what the log has of a device that stays away
  bool toldUp = false;
  qint64 toldDrops = 0;

  Mutex mutex;
  ConditionVariable changed;  ///< any of the members below
  bool stop GUARDED_BY(mutex) = false;
  bool woken GUARDED_BY(mutex) = false;
  bool ended GUARDED_BY(mutex) = false;
  KorviaShowTargetState state GUARDED_BY(mutex) = KorviaShowTargetState::Connecting;
  QString reason GUARDED_BY(mutex);
  Clock::time_point since GUARDED_BY(mutex);  // of the state
};

/// False when an output before this one does not let the device go.
bool DeviceOutput::Share::takeTurn() {
  const QDeadlineTimer deadline(times.end);
  while (inUse->exchange(true)) {
    if (deadline.hasExpired() || !wait(kPoll))
      return false;
  }
  return true;
}

/// Returns why the device does not run any more.
QString DeviceOutput::Share::runDevice() {
  if (!takeTurn())
    return QStringLiteral("the device is still being closed");
  const Turn turn(*inUse);
  if (!startGStreamer())
    return QStringLiteral("gstreamer does not start");
  QString path;
  if (settings.kind == DeviceKind::VirtualCamera) {
    path = findCamera();
    if (path.isEmpty())
      return QStringLiteral("no device, the kernel module v4l2loopback is not loaded");
  }
  DevicePipeline pipeline(settings, picture, [this] { wake(); });
  if (!pipeline.open(path))
    return pipeline.failure();
  feed->begin();
  QString why = feedUntilItFails(pipeline);
  feed->end();
  tellOfDrops();
  // Before the pipeline is closed, which takes as long as the device hangs.
  lose(why);
  return why;
}

QString DeviceOutput::Share::feedUntilItFails(DevicePipeline& pipeline) {
  bool isUp = false;
  Clock::time_point upAt;
  Clock::time_point roomAt = Clock::now();
  Clock::time_point toldAt = roomAt;
  do {
    if (pipeline.hasFailed())
      return pipeline.failure();
    // Asked before the feed, which may fill all the room that there is.
    const bool hadRoom = pipeline.hasRoom();
    feed->feed(pipeline);
    const Clock::time_point now = Clock::now();
    if (hadRoom)
      roomAt = now;
    else if (now - roomAt > times.stall)
      return QStringLiteral("the device takes no pictures");
    if (!isUp && pipeline.isUp()) {
      isUp = true;
      upAt = now;
      setState(KorviaShowTargetState::Up);
    }
    // A device that comes and goes is told of when it has stayed.
    if (isUp && !toldUp && (reported.isEmpty() || now - upAt > times.retry)) {
      toldUp = true;
      reported.clear();
      qCInfo(logOutput, "%s is up", qPrintable(label));
    }
    if (now - toldAt > kTellOfDrops) {
      toldAt = now;
      tellOfDrops();
    }
  } while (wait(kPoll));
  return {};
}

void DeviceOutput::Share::lose(const QString& why) {
  if (isStopping())
    return;
  setState(KorviaShowTargetState::Lost, why);
  toldUp = false;
  if (why != std::exchange(reported, why))
    qCWarning(logOutput, "%s is lost : %s", qPrintable(label), qPrintable(why));
}

void DeviceOutput::Share::tellOfDrops() {
  const qint64 drops = feed->droppedFrames();
  if (drops > toldDrops)
    qCWarning(logOutput, "%s does not keep up, %lld frames dropped", qPrintable(label),
              static_cast<long long>(drops - toldDrops));
  toldDrops = drops;
}

DeviceOutput::DeviceOutput(const DeviceSettings& settings, const DevicePicture& picture,
                           std::unique_ptr<DeviceFeed> feed, FindCamera findCamera, InUse inUse, Times times)
    : share_(std::make_shared<Share>(settings, picture, std::move(feed), std::move(findCamera),
                                     std::move(inUse), times)) {
  // Detached, because a driver may hang for ever.
  std::thread([share = share_] { run(share); }).detach();
}

void DeviceOutput::stop() {
  MutexLock lock(share_->mutex);
  share_->stop = true;
  share_->changed.notify_all();
}

DeviceOutput::~DeviceOutput() {
  stop();
  Share& share = *share_;
  MutexLock lock(share.mutex);
  if (!share.changed.wait_for(lock, share.times.end,
                              [&share]() REQUIRES(share.mutex) { return share.ended; }))
    qCWarning(logOutput, "%s does not close, it is left behind", qPrintable(share.label));
}

void DeviceOutput::pushSound(StereoSpan sound, qint64 nowNs) {
  share_->feed->pushSound(sound, nowNs);
}

void DeviceOutput::pushFrame(const FrameRef& frame) {
  share_->feed->pushFrame(frame);
  share_->wake();
}

tagKorviaShowTargetReport DeviceOutput::report() const {
  tagKorviaShowTargetReport report;
  report.name = share_->settings.name();
  MutexLock lock(share_->mutex);
  report.state = share_->state;
  report.reason = share_->reason;
  const Clock::duration time = Clock::now() - share_->since;
  if (report.state == KorviaShowTargetState::Up)
    report.upSeconds = static_cast<qint32>(std::chrono::floor<std::chrono::seconds>(time).count());
  if (report.state == KorviaShowTargetState::Lost)
    report.retrySeconds = wholeSeconds(share_->times.retry - time);
  return report;
}

void DeviceOutput::run(const std::shared_ptr<Share>& share) {
  nameThread("kv-device");
  runAsBatch();
  do {
    share->lose(share->runDevice());
  } while (share->waitForRetry());
  MutexLock lock(share->mutex);
  share->ended = true;
  share->changed.notify_all();
}

}  // namespace korvia

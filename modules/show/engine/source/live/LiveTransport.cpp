#include "LiveTransport.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

#include "engine/EngineLog.h"
#include "engine/source/SourceThreads.h"

namespace korvia {

namespace {

constexpr const char* kNothingComes = "nothing comes any more";

// A queue holds what waits for the latency to pass, and what came in a burst.
constexpr std::int64_t kBurstNs = 1'000'000'000;
constexpr int kMostFramesPerSecond = 60;
// The first wait before a lost input is opened again.
constexpr std::int64_t kFirstWaitNs = 200'000'000;
// How often an open connection is checked for silence.
constexpr std::int64_t kCheckNs = 250'000'000;
// An input that does not close within this time is left behind, and another one is opened beside it.
constexpr std::chrono::milliseconds kClosePatience{3000};
// When so many are left behind, no other one is opened until one of them has closed.
constexpr int kMostLeftBehind = 3;
// A source that delivers for a shorter time than this comes and goes, which is logged once.
constexpr std::int64_t kSteadyNs = 10'000'000'000;
// A connection that delivers for a shorter time than this does not shorten the wait before the next one.
constexpr std::int64_t kUsefulNs = 500'000'000;
// An input that may wait for ever for others to call is told as an error after this time, and goes on
// waiting.
constexpr std::int64_t kPatienceNs = 5'000'000'000;
// A source that the operator or the watchdog stops had been lost, when it was silent for this time.
constexpr std::int64_t kLostNs = 2'000'000'000;

VideoQueue::Live limitsFor(std::int64_t latencyNs) {
  VideoQueue::Live limits;
  limits.spanNs = latencyNs + kBurstNs;
  limits.mostFrames = static_cast<int>(limits.spanNs * kMostFramesPerSecond / 1'000'000'000);
  return limits;
}

/// Each connection has threads of its own, and the C library keeps the pictures that they freed in heaps of
/// theirs. A source that comes and goes would make the process grow by a gigabyte in ten minutes, so the
/// memory is given back to the system, at most every ten seconds because that takes some milliseconds.
void giveFreedMemoryBack() {
  constexpr std::int64_t kQuietNs = 10'000'000'000;
  static std::atomic<std::int64_t> nextNs{0};
  const std::int64_t nowNs = LiveConnection::nowNs();
  std::int64_t dueNs = nextNs;
  if (nowNs >= dueNs && nextNs.compare_exchange_strong(dueNs, nowNs + kQuietNs))
    malloc_trim(0);
}

}  // namespace

LiveTransport::LiveTransport(const SourceContext& context, const LiveSettings& settings, LiveInputMaker maker)
    : context_(context),
      settings_(settings),
      maker_(std::move(maker)),
      clock_(context.rate, settings.latencyNs),
      queue_(limitsFor(settings.latencyNs)),
      sound_(settings.description, settings.latencyNs + 2 * kBurstNs) {}

LiveTransport::~LiveTransport() = default;

// Console thread.

void LiveTransport::play() {
  want(Playing);
}

void LiveTransport::pause() {
  want(Paused);
}

void LiveTransport::stop() {
  want(Stopped);
}

void LiveTransport::want(KorviaShowPlayState state) {
  {
    MutexLock lock(mutex_);
    stopAsked_ |= state == Stopped;
    tryNow_ = state != Stopped;
    wanted_ = state;
    applyHold();
  }
  wake_.notify_one();
}

void LiveTransport::setHold(bool hold) {
  MutexLock lock(mutex_);
  held_ = hold;
  applyHold();
}

void LiveTransport::applyHold() {
  clock_.setHold(held_ || wanted_ != Playing);
}

void LiveTransport::close() {
  closing_ = true;
  state_ = NothingSpecial;
  queue_.close();
  {
    // Under the lock the control thread is not between its test and its wait.
    MutexLock lock(mutex_);
  }
  wake_.notify_one();
}

// Engine thread.

FrameRef LiveTransport::pull(int ticks) {
  const ClockReading reading = clock_.advance(ticks, LiveConnection::nowNs());
  VideoQueue::Pull pulled = queue_.pull(reading);
  sound_.advance(reading);
  // Sound alone counts too, so that a radio station does not look like a picture that stands still.
  if (pulled.fresh || (!hasPicture_ && soundCame_.exchange(false)))
    ++framesShown_;
  if (pulled.durationNs > 0)
    pictureDurationNs_ = pulled.durationNs;
  return std::move(pulled.frame);
}

// The input's threads.

void LiveTransport::onLivePicture(FrameRef picture, std::int64_t stampNs, std::int64_t arrivalNs) {
  if (!picture)
    return;
  hasPicture_ = true;
  ++framesReceived_;
  arrivals_.count(1);
  TimedFrame frame;
  frame.timeNs = clock_.arrive(stampNs, arrivalNs, LiveClock::Stream::Picture);
  frame.frame = std::move(picture);
  queue_.push(std::move(frame));
}

void LiveTransport::onLiveSound(StereoSpan sound, std::int64_t stampNs, std::int64_t arrivalNs) {
  soundArrivals_.count(sound.samples);
  soundPackets_.count(1);
  soundCame_ = true;
  sound_.push(sound, clock_.arrive(stampNs, arrivalNs, LiveClock::Stream::Sound));
}

void LiveTransport::onLiveStampsRestart() {
  clock_.beginStamps();
}

void LiveTransport::onLiveChange() {
  {
    MutexLock lock(mutex_);
    changed_ = true;
  }
  wake_.notify_one();
}

// Any thread.

float LiveTransport::receivedRate() const {
  return hasPicture_ ? arrivals_.perSecond() : soundPackets_.perSecond();
}

QString LiveTransport::failureReason() const {
  MutexLock lock(mutex_);
  return failureReason_;
}

void LiveTransport::fill(SourceFigures& figures) const {
  const LiveClock::Figures clock = clock_.figures();
  const VideoQueue::Figures queue = queue_.figures();
  figures.framesDecoded = framesReceived_;
  figures.framesQueued = queue_.size();
  figures.framesSkipped = queue.dropped;
  figures.framesPerSecond = receivedRate();
  figures.samplesPerSecond = samplesPerSecond();
  figures.live.isLive = true;
  figures.live.driftPpm = clock.driftPpm;
  figures.live.latencyMs = static_cast<double>(queue.latencyNs + settings_.inputLatencyNs) * 1e-6;
  figures.live.stampJumps = clock.reanchors;
  figures.live.missedFrames = queue.missed;
  figures.live.connections = connections_;
}

// Control thread.

void LiveTransport::run() {
  while (!closing_) {
    if (connection_)
      settle();
    if (connection_) {
      tellLongWait();
      if (const auto reason = reasonToClose()) {
        const bool wasSilent =
            connection_->hasDelivered() && connection_->silentNs(LiveConnection::nowNs()) > kLostNs;
        disconnect();
        if (!reason->isEmpty())
          noteFailure(*reason);
        else if (wasSilent)
          logFailure(QString::fromLatin1(kNothingComes));
        continue;
      }
    } else {
      connect();
    }
    waitForWork();
  }
  disconnect();
}

std::optional<QString> LiveTransport::reasonToClose() const {
  {
    MutexLock lock(mutex_);
    if (stopAsked_)
      return QString();
  }
  if (connection_->isLost())
    return connection_->reason();
  const std::int64_t silentNs = connection_->silentNs(LiveConnection::nowNs());
  if (connection_->hasDelivered() && settings_.silenceNs > 0 && silentNs > settings_.silenceNs)
    return QString::fromLatin1(kNothingComes);
  if (!connection_->hasDelivered() && settings_.openingNs > 0 && silentNs > settings_.openingNs)
    return QStringLiteral("nothing has come");
  return std::nullopt;
}

void LiveTransport::tellLongWait() {
  if (connection_->hasDelivered() || settings_.openingNs > 0 ||
      connection_->silentNs(LiveConnection::nowNs()) < kPatienceNs || state_ != Opening)
    return;
  {
    MutexLock lock(mutex_);
    failureReason_ = QStringLiteral("nothing has come yet");
  }
  state_ = Error;
}

void LiveTransport::connect() {
  bool tooManyLeft = false;
  {
    MutexLock lock(mutex_);
    stopAsked_ = false;
    if (wanted_ == Stopped) {
      tryNow_ = false;
      failureReason_.clear();
      connecting_ = false;
      state_ = Stopped;
      return;
    }
    if (std::exchange(tryNow_, false))
      nextTryNs_ = waitNs_ = 0;
    if (LiveConnection::nowNs() < nextTryNs_)
      return;
    // After a failure it stays an error until a picture comes.
    if (state_ != Error)
      state_ = Opening;
    tooManyLeft = closingInputs_ >= kMostLeftBehind;
  }
  if (neverOpens()) {
    noteFailure(settings_.neverOpens);
    nextTryNs_ = std::numeric_limits<std::int64_t>::max();
    return;
  }
  if (tooManyLeft) {
    noteFailure(QStringLiteral("earlier connections do not close"));
    return;
  }
  connecting_ = true;
  hasPicture_ = false;
  settled_ = false;
  clock_.beginStamps();
  connection_ = std::make_shared<LiveConnection>(shared_from_this(), maker_);
  QString reason;
  if (connection_->start(reason))
    return;
  disconnect();
  noteFailure(reason);
}

void LiveTransport::settle() {
  if (!connection_->hasDelivered() || connection_->isLost())
    return;
  KorviaShowPlayState wanted = Playing;
  {
    MutexLock lock(mutex_);
    failureReason_.clear();
    wanted = wanted_;
  }
  connecting_ = false;
  if (wanted != Stopped && !closing_)
    state_ = wanted;
  if (std::exchange(settled_, true)) {
    if (unsteady_ && isSteady()) {
      unsteady_ = false;
      qCInfo(logSource, "live source is steady again : %s", qUtf8Printable(settings_.description));
    }
    return;
  }
  ++connections_;
  deliversSinceNs_ = LiveConnection::nowNs();
  if (!std::exchange(loggedReason_, QString()).isEmpty() && !unsteady_)
    qCInfo(logSource, "live source is back : %s", qUtf8Printable(settings_.description));
}

bool LiveTransport::isSteady() const {
  // The first connection may be a short one.
  return connections_ <= 1 || LiveConnection::nowNs() - deliversSinceNs_ > kSteadyNs;
}

void LiveTransport::logFailure(const QString& reason) {
  const bool steady = isSteady();
  const QByteArray name = settings_.description.toUtf8();
  const bool repeats = !std::exchange(loggedReason_, reason).isEmpty();
  if (!steady && !std::exchange(unsteady_, true))
    qCWarning(logSource, "live source comes and goes : %s : %s", name.constData(), qUtf8Printable(reason));
  else if (steady && !repeats && !unsteady_)
    qCWarning(logSource, "live source is lost : %s : %s", name.constData(), qUtf8Printable(reason));
}

void LiveTransport::disconnect() {
  if (!connection_)
    return;
  const std::shared_ptr<LiveConnection> closing = std::exchange(connection_, nullptr);
  closing->refuse();
  connecting_ = false;
  if (closing_) {
    closing->close();
    return;
  }
  {
    MutexLock lock(mutex_);
    ++closingInputs_;
  }
  const auto self = shared_from_this();
  const auto closed = std::make_shared<std::atomic<bool>>(false);
  const quint64 thread = startSourceThread(settings_.description, [self, closing, closed] {
    closing->close();
    giveFreedMemoryBack();
    {
      MutexLock lock(self->mutex_);
      --self->closingInputs_;
      *closed = true;
    }
    self->wake_.notify_all();
  });
  markSourceThreadClosing(thread);
  MutexLock lock(mutex_);
  wake_.wait_until(lock, std::chrono::steady_clock::now() + kClosePatience,
                   [this, closed] { return *closed || closing_; });
}

void LiveTransport::noteFailure(const QString& reason) {
  if (settled_ && LiveConnection::nowNs() - deliversSinceNs_ > kUsefulNs)
    waitNs_ = 0;
  waitNs_ = waitNs_ == 0 ? kFirstWaitNs : std::min(waitNs_ * 3 / 2, settings_.mostWaitNs);
  nextTryNs_ = LiveConnection::nowNs() + waitNs_;
  {
    MutexLock lock(mutex_);
    failureReason_ = reason;
  }
  if (!closing_)
    state_ = Error;
  logFailure(reason);
}

void LiveTransport::waitForWork() {
  MutexLock lock(mutex_);
  const bool idle = !connection_ && wanted_ == Stopped;
  const auto ready = [this]() REQUIRES(mutex_) { return closing_ || changed_ || stopAsked_ || tryNow_; };
  if (idle) {
    wake_.wait(lock, ready);
  } else {
    const std::int64_t nowNs = LiveConnection::nowNs();
    const std::int64_t waitNs =
        connection_ ? kCheckNs : std::clamp<std::int64_t>(nextTryNs_ - nowNs, 0, kCheckNs);
    wake_.wait_until(lock, std::chrono::steady_clock::now() + std::chrono::nanoseconds(waitNs), ready);
  }
  changed_ = false;
  if (connection_)
    tryNow_ = false;  // it is open already
}

}  // namespace korvia

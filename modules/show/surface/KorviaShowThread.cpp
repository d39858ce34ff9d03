#include "KorviaShowThread.h"

#include <cmath>

#include "trace/BlackBox.h"

namespace {

// After a longer stop, such as a suspended machine, the clock restarts instead of catching up.
constexpr qint64 kMissedMax = 250;
// A float rate is converted with a precision of a thousandth of a frame.
constexpr int kFpsScale = 1000;

}  // namespace

KorviaShowThread::KorviaShowThread(QObject* parent) : QObject(parent) {}

KorviaShowThread::~KorviaShowThread() {
  if (thread_.joinable())
    KorviaShowThread::stop();
}

void KorviaShowThread::setFps(float fps) {
  if (!std::isfinite(fps) || fps <= 0 || fps > korvia::FrameRate::kFramesPerSecondMax)
    return;
  setFrameRate({std::max(1L, std::lround(fps * kFpsScale)), kFpsScale});
}

void KorviaShowThread::setFrameRate(korvia::FrameRate rate) {
  if (!rate.isValid())
    return;
  korvia::MutexLock lock(mutex_);
  rate_ = rate;
  clockRestart_ = true;
}

void KorviaShowThread::start(IKorviaShowThreadSink* sink, KorviaShowThreadMode) {
  if (thread_.joinable())
    return;
  sink_ = sink;
  {
    korvia::MutexLock lock(mutex_);
    stopRequested_ = false;
    clockRestart_ = true;
  }
  frameNumber_ = 0;
  thread_ = std::thread([this] { onThreadRun(); });
}

void KorviaShowThread::stop() {
  if (!thread_.joinable())
    return;
  {
    korvia::MutexLock lock(mutex_);
    stopRequested_ = true;
  }
  wake_.notify_all();
  thread_.join();
  sink_ = nullptr;
}

void KorviaShowThread::postEvent(quint64 eventId, QVariant a1, QVariant a2, QVariant a3, QVariant a4) {
  korvia::BlackBox::instance().post(eventId, a1, a2, a3, a4);
  korvia::MutexLock lock(mutex_);
  events_.push_back({eventId, {std::move(a1), std::move(a2), std::move(a3), std::move(a4)}});
}

void KorviaShowThread::postResult(quint64 eventId, quint64 result, const QVariant& a1, const QVariant& a2,
                                  const QVariant& a3, const QVariant& a4) {
  korvia::BlackBox::instance().result(eventId, a1, a2, a3, a4);
  if (sink_)
    sink_->onPostEventResult(eventId, result, a1, a2, a3, a4);
}

void KorviaShowThread::onThreadRun() {
  onThreadBegin();
  korvia::FrameTick tick;
  while (waitForTick(tick))
    onThreadStep(tick);
  drainEvents();
  onThreadEnd();
}

void KorviaShowThread::onThreadStep(const korvia::FrameTick& tick) {
  drainEvents();
  doFrameStep(tick);
}

void KorviaShowThread::drainEvents() {
  {
    korvia::MutexLock lock(mutex_);
    handled_.swap(events_);
  }
  for (const korvia::ShowEvent& event : handled_)
    onThreadEvent(event);
  handled_.clear();
}

bool KorviaShowThread::waitForTick(korvia::FrameTick& tick) {
  using namespace std::chrono;
  korvia::MutexLock lock(mutex_);
  for (;;) {
    if (stopRequested_)
      return false;
    if (clockRestart_) {
      clockRestart_ = false;
      epoch_ = steady_clock::now();
      clockFrame_ = 0;
    }
    const auto deadline = epoch_ + nanoseconds(rate_.nsOf(clockFrame_ + 1));
    if (steady_clock::now() >= deadline)
      break;
    wake_.wait_until(lock, deadline);
  }
  const qint64 elapsedNs = duration_cast<nanoseconds>(steady_clock::now() - epoch_).count();
  const qint64 due = std::max<qint64>(clockFrame_ + 1, rate_.framesIn(elapsedNs));
  qint64 missed = due - (clockFrame_ + 1);
  if (missed > kMissedMax) {
    clockRestart_ = true;
    missed = 0;
  }
  clockFrame_ = due;
  frameNumber_ += missed + 1;
  tick = {frameNumber_, static_cast<int>(missed), elapsedNs - rate_.nsOf(due)};
  return true;
}

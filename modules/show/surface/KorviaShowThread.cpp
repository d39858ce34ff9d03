#include "KorviaShowThread.h"

#include <cmath>

#include "trace/BlackBox.h"

namespace {

// After a longer standstill (a suspended machine) the clock starts anew instead of catching up.
constexpr qint64 kMissedMax = 250;
// A float rate is kept to a thousandth of a frame.
constexpr int kFpsScale = 1000;

}  // namespace

KorviaShowThread::KorviaShowThread(QObject* parent) : QObject(parent) {}

KorviaShowThread::~KorviaShowThread() {
  if (thread_.joinable())
    KorviaShowThread::stop();
}

void KorviaShowThread::setFps(float fps) {
  if (!std::isfinite(fps) || fps <= 0 || fps > 1000)
    return;
  std::lock_guard lock(mutex_);
  rateNumerator_ = std::lround(fps * kFpsScale);
  rateDenominator_ = kFpsScale;
  clockRestart_ = true;
}

void KorviaShowThread::setFrameRate(int numerator, int denominator) {
  if (numerator <= 0 || denominator <= 0 || numerator / denominator > 1000)
    return;
  std::lock_guard lock(mutex_);
  rateNumerator_ = numerator;
  rateDenominator_ = denominator;
  clockRestart_ = true;
}

void KorviaShowThread::start(IKorviaShowThreadSink* sink, KorviaShowThreadMode) {
  if (thread_.joinable())
    return;
  sink_ = sink;
  stopRequested_ = false;
  thread_ = std::thread([this] { onThreadRun(); });
}

void KorviaShowThread::stop() {
  if (!thread_.joinable())
    return;
  {
    std::lock_guard lock(mutex_);
    stopRequested_ = true;
  }
  wake_.notify_all();
  thread_.join();
  sink_ = nullptr;
}

void KorviaShowThread::postEvent(quint64 eventId, QVariant a1, QVariant a2, QVariant a3, QVariant a4) {
  korvia::BlackBox::instance().post(eventId, a1, a2, a3, a4);
  std::lock_guard lock(mutex_);
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
  std::deque<korvia::ShowEvent> events;
  {
    std::lock_guard lock(mutex_);
    events.swap(events_);
  }
  for (const korvia::ShowEvent& event : events)
    onThreadEvent(event);
}

bool KorviaShowThread::waitForTick(korvia::FrameTick& tick) {
  using namespace std::chrono;
  std::unique_lock lock(mutex_);
  const auto deadlineOf = [this](qint64 frame) {
    return epoch_ + nanoseconds(frame * 1'000'000'000 * rateDenominator_ / rateNumerator_);
  };
  for (;;) {
    if (stopRequested_)
      return false;
    if (clockRestart_) {
      clockRestart_ = false;
      epoch_ = steady_clock::now();
      clockFrame_ = 0;
    }
    const auto deadline = deadlineOf(clockFrame_ + 1);
    if (steady_clock::now() >= deadline)
      break;
    wake_.wait_until(lock, deadline);
  }
  const qint64 elapsedNs = duration_cast<nanoseconds>(steady_clock::now() - epoch_).count();
  const qint64 due =
      std::max(clockFrame_ + 1, elapsedNs * rateNumerator_ / (1'000'000'000 * rateDenominator_));
  qint64 missed = due - (clockFrame_ + 1);
  if (missed > kMissedMax) {
    clockRestart_ = true;
    missed = 0;
  }
  clockFrame_ = due;
  frameNumber_ += missed + 1;
  tick = {frameNumber_, static_cast<int>(missed)};
  return true;
}

#include "TargetWorker.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "engine/EngineLog.h"

namespace korvia {

namespace {

constexpr int kCheckMs = 1000;

}  // namespace

void TargetShare::endAccepting() {
  if (!accepting)
    return;
  accepting = false;
  finishDeadline.setRemainingTime(settings.finishTimeoutMs);
  figures.state = TargetState::Finishing;
  figures.reason.clear();
  figures.retryMs = 0;
}

void TargetShare::follow(const TargetLink& link) {
  if (!accepting)
    return;
  TargetState state = TargetState::Waiting;
  if (link.state == TargetLink::State::Up)
    state = TargetState::Up;
  else if (link.state == TargetLink::State::Lost)
    state = TargetState::Lost;
  if (state == TargetState::Up && figures.state != state)
    sinceUp.start();
  figures.state = state;
  figures.reason = link.reason;
  figures.retryMs = link.retryMs;
}

TargetWorker::TargetWorker(std::shared_ptr<TargetShare> share, std::unique_ptr<TargetWriter> writer)
    : share_(std::move(share)), writer_(std::move(writer)) {}

void TargetWorker::run() {
  Step result = start() ? Step::Continue : Step::Failed;
  while (result == Step::Continue)
    result = step();
  close(result == Step::Failed);
}

bool TargetWorker::start() {
  const bool opened = writer_->open([share = share_.get()] {
    // Taking the lock once makes sure that the waiting thread is not between its test and its wait, where it
    // would miss the notification.
    { MutexLock lock(share->mutex); }
    share->changed.notify_all();
  });
  if (!opened) {
    reason_ = writer_->failure();
    return false;
  }
  sinceCheck_.start();
  const QString location = writer_->location();
  MutexLock lock(share_->mutex);
  share_->figures.location = location;
  return true;
}

TargetWorker::Step TargetWorker::step() {
  std::optional<Packet> packet;
  bool finishing = false;
  bool drained = false;
  QDeadlineTimer deadline;
  {
    MutexLock lock(share_->mutex);
    const auto canWrite = [this]() REQUIRES(share_->mutex) {
      return !share_->queue.isEmpty() && writer_->hasRoom();
    };
    const auto mustAct = [&]() REQUIRES(share_->mutex) {
      return canWrite() || writer_->progress() != TargetWriter::Progress::Open ||
             (!share_->accepting && share_->queue.isEmpty() && !endAsked_);
    };
    const qint64 untilCheck = std::max<qint64>(1, kCheckMs - sinceCheck_.elapsed());
    share_->changed.wait_for(lock, std::chrono::milliseconds(untilCheck), mustAct);
    if (canWrite())
      packet = share_->queue.pop();
    finishing = !share_->accepting;
    drained = share_->queue.isEmpty();
    deadline = share_->finishDeadline;
    TargetFigures& figures = share_->figures;
    figures.bytesWritten = writer_->bytesWritten();
    figures.framesWritten += packet && packet->isPicture() ? 1 : 0;
    share_->follow(writer_->link());
  }

  const TargetWriter::Progress progress = writer_->progress();
  if (progress == TargetWriter::Progress::Failed) {
    reason_ = writer_->failure();
    return Step::Failed;
  }
  if (progress == TargetWriter::Progress::Ended)
    return Step::Ended;
  if (packet) {
    writer_->write(*packet);
    ++packetsWritten_;
  }
  if (sinceCheck_.hasExpired(kCheckMs))
    check(finishing);
  if (writer_->takeKeyRequest())
    share_->keyRequested = true;
  return finishing ? stepToEnd(drained, deadline) : Step::Continue;
}

TargetWorker::Step TargetWorker::stepToEnd(bool drained, const QDeadlineTimer& deadline) {
  if (drained && !endAsked_) {
    // A muxer without any packet fails at the end of stream.
    if (packetsWritten_ == 0)
      return Step::Ended;
    writer_->end();
    endAsked_ = true;
  }
  if (deadline.hasExpired() && !writer_->needsEnd())
    return Step::Ended;
  if (deadline.hasExpired()) {
    reason_ = QStringLiteral("the end was not written in time");
    return Step::Failed;
  }
  return Step::Continue;
}

void TargetWorker::check(bool finishing) {
  const qint64 elapsedMs = std::max<qint64>(1, sinceCheck_.restart());
  const bool goesOn = finishing || writer_->mayGoOn();
  if (!goesOn)
    reason_ = writer_->failure();
  qint64 dropped = 0;
  {
    MutexLock lock(share_->mutex);
    if (!goesOn)
      share_->endAccepting();
    dropped = share_->figures.framesDropped;
    share_->figures.location = writer_->location();
    share_->figures.disk = writer_->disk();
    const qint64 bytes = share_->figures.bytesWritten;
    share_->figures.kbps =
        static_cast<float>(bytes - std::exchange(lastBytes_, bytes)) * 8.0F / static_cast<float>(elapsedMs);
  }
  if (dropped > lastDropped_)
    qCWarning(logOutput, "%s cannot keep up, %lld frames dropped", qPrintable(share_->settings.label),
              static_cast<long long>(dropped - lastDropped_));
  lastDropped_ = dropped;
}

void TargetWorker::close(bool failed) {
  TargetOutcome outcome{failed, reason_, 0, 0};
  {
    MutexLock lock(share_->mutex);
    share_->endAccepting();
    share_->queue.clear();
    outcome.framesWritten = share_->figures.framesWritten;
    outcome.framesDropped = share_->figures.framesDropped + share_->figures.framesSkipped;
  }
  writer_->close(outcome);
  const qint64 bytesWritten = writer_->bytesWritten();
  MutexLock lock(share_->mutex);
  share_->figures.location = writer_->location();
  share_->figures.disk = writer_->disk();
  share_->figures.state = failed ? TargetState::Failed : TargetState::Finished;
  share_->figures.reason = reason_;
  share_->figures.retryMs = 0;
  share_->figures.kbps = 0;
  share_->figures.bytesWritten = bytesWritten;
  share_->ended = true;
  share_->changed.notify_all();
}

}  // namespace korvia

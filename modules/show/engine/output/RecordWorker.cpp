#include "RecordWorker.h"

#include <QFile>
#include <QFileInfo>
#include <utility>

#include "FragmentedFile.h"
#include "OutputLog.h"
#include "RecordFileName.h"
#include "engine/frame/FrameFit.h"

namespace korvia {

namespace {

constexpr int kCheckMs = 1000;

}  // namespace

RecordWorker::RecordWorker(RecordSettings settings, std::shared_ptr<RecordState> state)
    : settings_(std::move(settings)), state_(std::move(state)) {}

void RecordWorker::run() {
  Step result = start() ? Step::Continue : Step::Failed;
  while (result == Step::Continue)
    result = step();
  close(result == Step::Failed);
}

bool RecordWorker::start() {
  fileName_ = RecordFileName::reserve(settings_.folder, settings_.name,
                                      QLatin1String(settings_.container.suffix), &reason_);
  if (fileName_.isEmpty())
    return false;
  if (!hasSpace()) {
    reason_ = QStringLiteral("the disk is full");
    return false;
  }
  pipeline_ = std::make_unique<RecordPipeline>([state = state_.get()] {
    // A test of the condition that is going on ends first, so that its thread does not miss the call.
    { std::lock_guard lock(state->mutex); }
    state->changed.notify_all();
  });
  if (!pipeline_->open(settings_, fileName_)) {
    reason_ = pipeline_->failure();
    return false;
  }
  {
    std::lock_guard lock(state_->mutex);
    state_->fileName = fileName_;
  }
  sinceCheck_.start();
  qCInfo(logOutput, "recording to \"%s\" : %dx%d, %d/%d fps, %d kbit/s", qPrintable(fileName_),
         settings_.size.width, settings_.size.height, static_cast<int>(settings_.rate.numerator),
         static_cast<int>(settings_.rate.denominator), settings_.videoKbps);
  return true;
}

RecordWorker::Step RecordWorker::step() {
  QueuedFrame queued;
  bool finishing = false;
  bool drained = false;
  {
    std::unique_lock lock(state_->mutex);
    const auto canFeed = [this] { return !state_->queue.isEmpty() && pipeline_->hasRoom(); };
    const auto mustAct = [&] {
      return canFeed() || pipeline_->isEnded() || pipeline_->hasFailed() ||
             (state_->finishing && state_->queue.isEmpty() && !streamEnded_);
    };
    const qint64 untilCheck = std::max<qint64>(1, kCheckMs - sinceCheck_.elapsed());
    state_->changed.wait_for(lock, std::chrono::milliseconds(untilCheck), mustAct);
    if (canFeed())
      queued = state_->queue.pop();
    finishing = state_->finishing;
    drained = state_->queue.isEmpty();
    state_->figures.framesEncoded = pipeline_->framesEncoded();
    state_->figures.bytesWritten = pipeline_->bytesWritten();
    state_->figures.up = state_->figures.bytesWritten > 0 && state_->accepting;
  }

  if (pipeline_->hasFailed()) {
    reason_ = pipeline_->failure();
    return Step::Failed;
  }
  if (pipeline_->isEnded())
    return Step::Ended;
  if (queued.frame)
    feed(queued);
  if (finishing) {
    if (!sinceFinish_.isValid())
      sinceFinish_.start();
    if (drained && !streamEnded_) {
      // A multiplexer that never saw a picture fails at its end.
      if (framesFed_ == 0)
        return Step::Ended;
      pipeline_->endStream();
      streamEnded_ = true;
    }
    if (sinceFinish_.hasExpired(settings_.finishTimeoutMs)) {
      reason_ = QStringLiteral("the end was not written in time");
      return Step::Failed;
    }
  }
  if (sinceCheck_.hasExpired(kCheckMs))
    check();
  return Step::Continue;
}

void RecordWorker::feed(const QueuedFrame& queued) {
  FrameRef frame = queued.frame;
  if (frame->size() != settings_.size) {
    if (!scaled_)
      scaled_ = std::make_unique<FramePool>(settings_.size);
    MutableFrame target = scaled_->acquire();
    fitFrame(*frame, fitRect(frame->size(), 1, 1, settings_.size), *target);
    frame = std::move(target).publish();
  }
  pipeline_->feed(frame, queued.index);
  ++framesFed_;
}

void RecordWorker::stopAccepting() {
  std::lock_guard lock(state_->mutex);
  state_->accepting = false;
  state_->finishing = true;
}

bool RecordWorker::hasSpace() const {
  const qint64 bytes = settings_.freeBytes(QFileInfo(fileName_).path());
  return bytes < 0 || bytes >= settings_.minimumFreeBytes;
}

void RecordWorker::check() {
  measure();
  if (sinceFinish_.isValid() || hasSpace())
    return;
  qCWarning(logOutput, "the disk is nearly full, closing \"%s\"", qPrintable(fileName_));
  stopAccepting();
}

void RecordWorker::measure() {
  const qint64 elapsedMs = std::max<qint64>(1, sinceCheck_.restart());
  const qint64 frames = pipeline_->framesEncoded();
  const qint64 bytes = pipeline_->bytesEncoded();
  qint64 dropped = 0;
  {
    std::lock_guard lock(state_->mutex);
    OutputFigures& figures = state_->figures;
    figures.framesPerSecond =
        static_cast<float>(frames - lastFrames_) * 1000.0F / static_cast<float>(elapsedMs);
    figures.videoKbps = static_cast<float>(bytes - lastBytes_) * 8.0F / static_cast<float>(elapsedMs);
    dropped = figures.framesDropped;
  }
  if (dropped > lastDropped_)
    qCWarning(logOutput, "the recording cannot keep up, %lld frames dropped",
              static_cast<long long>(dropped - lastDropped_));
  lastFrames_ = frames;
  lastBytes_ = bytes;
  lastDropped_ = dropped;
}

void RecordWorker::close(bool failed) {
  stopAccepting();
  const qint64 frames = pipeline_ ? pipeline_->framesEncoded() : 0;
  const qint64 bytes = pipeline_ ? pipeline_->bytesWritten() : 0;
  pipeline_.reset();
  if (failed && settings_.container.boxes && !fileName_.isEmpty())
    dropPartialBox(fileName_);
  if (!fileName_.isEmpty() && QFileInfo(fileName_).size() == 0)
    QFile::remove(fileName_);

  OutputFigures figures;
  {
    std::lock_guard lock(state_->mutex);
    while (!state_->queue.isEmpty())
      state_->queue.pop();
    state_->figures.up = false;
    state_->figures.framesEncoded = frames;
    state_->figures.bytesWritten = bytes;
    state_->figures.framesPerSecond = 0;
    state_->figures.videoKbps = 0;
    figures = state_->figures;
  }
  if (failed)
    qCWarning(logOutput, "recording \"%s\" failed : %s", qPrintable(settings_.name), qPrintable(reason_));
  else
    qCInfo(logOutput, "recording \"%s\" closed : %lld frames, %lld dropped", qPrintable(fileName_),
           static_cast<long long>(figures.framesEncoded), static_cast<long long>(figures.framesDropped));
  std::lock_guard lock(state_->mutex);
  state_->finished = true;
  state_->changed.notify_all();
}

}  // namespace korvia

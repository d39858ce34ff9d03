#include "Target.h"

#include <cmath>
#include <utility>

#include "TargetWorker.h"
#include "engine/EngineLog.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

// Time for closing the file and ending the thread after the end of stream.
constexpr int kCloseMs = 2000;

/// Number of whole pictures missing between `endNs` and the packet.
qint64 framesBetween(qint64 endNs, const Packet& packet) {
  if (packet.ptsNs <= endNs || packet.durationNs <= 0)
    return 0;
  return std::llround(static_cast<double>(packet.ptsNs - endNs) / static_cast<double>(packet.durationNs));
}

// In the order of TargetKind.
constexpr const char* kNames[kTargetKinds] = {"RTMP Push - 0", "RTMP Push - 1", "RTMP Local", "HTTP",
                                              "UDP",           "HLS",           "Record"};

}  // namespace

QString targetName(TargetKind kind) {
  return QString::fromLatin1(kNames[static_cast<std::size_t>(kind)]);
}

Target::Target(TargetSettings settings, std::unique_ptr<TargetWriter> writer)
    : share_(std::make_shared<TargetShare>(std::move(settings))),
      thread_([share = share_, writer = std::move(writer)]() mutable {
        nameThread(share->settings.threadName);
        runAsBatch(kOutputNice);
        TargetWorker(std::move(share), std::move(writer)).run();
      }) {}

Target::~Target() {
  finish();
  QDeadlineTimer end;
  {
    MutexLock lock(share_->mutex);
    end = share_->finishDeadline;
  }
  if (waitFinished(static_cast<int>(end.remainingTime()) + kCloseMs)) {
    thread_.join();
    return;
  }
  // A hanging disk blocks its thread for ever; the rest of the engine continues without it.
  qCWarning(logOutput, "%s does not end, left behind", qPrintable(share_->settings.label));
  thread_.detach();
}

bool Target::push(const Packet& packet) {
  {
    MutexLock lock(share_->mutex);
    if (!share_->accepting)
      return false;
    if (!share_->originNs) {
      if (!packet.keyFrame)
        return true;
      share_->originNs = packet.ptsNs;
    }
    Packet own = packet;
    own.ptsNs -= *share_->originNs;
    own.dtsNs -= *share_->originNs;
    // Sound before the first picture is dropped.
    if (own.ptsNs < 0)
      return true;
    const bool picture = own.isPicture();
    if (picture) {
      share_->figures.framesSkipped += framesBetween(share_->pictureEndNs, own);
      share_->pictureEndNs = own.endNs();
    }
    if (!share_->queue.push(std::move(own))) {
      share_->figures.framesDropped += picture ? 1 : 0;
      return true;
    }
  }
  // After the lock is released, so that the woken thread does not wait for it.
  share_->changed.notify_all();
  return true;
}

void Target::finish() {
  MutexLock lock(share_->mutex);
  share_->endAccepting();
  share_->changed.notify_all();
}

bool Target::waitFinished(int timeoutMs) {
  MutexLock lock(share_->mutex);
  return share_->changed.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                  [this]() REQUIRES(share_->mutex) { return share_->ended; });
}

TargetKind Target::kind() const {
  return share_->settings.kind;
}

bool Target::takeKeyRequest() {
  return share_->keyRequested.exchange(false);
}

TargetFigures Target::figures() const {
  MutexLock lock(share_->mutex);
  TargetFigures figures = share_->figures;
  if (figures.state == TargetState::Up)
    figures.upSeconds = static_cast<int>(share_->sinceUp.elapsed() / 1000);
  figures.queuedBytes = share_->queue.bytes();
  figures.queuedNs = share_->queue.durationNs();
  return figures;
}

}  // namespace korvia

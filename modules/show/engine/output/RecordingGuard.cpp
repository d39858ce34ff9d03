#include "RecordingGuard.h"

#include <utility>

#include "ReadBack.h"
#include "ThreadSafety.h"
#include "engine/EngineLog.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

constexpr std::chrono::seconds kEndTime{2};
// What a muxer and its queue hold back.
constexpr qint64 kHeldBackNs = 3'000'000'000;

}  // namespace

struct RecordingGuard::Share {
  Share(QString name, const RecordContainer& kind, std::chrono::milliseconds every)
      : fileName(std::move(name)), container(kind), interval(every) {}

  const QString fileName;
  const RecordContainer container;
  const std::chrono::milliseconds interval;
  Mutex mutex;
  ConditionVariable changed;
  bool isStopping GUARDED_BY(mutex) = false;
  bool hasEnded GUARDED_BY(mutex) = false;
  qint64 writtenNs GUARDED_BY(mutex) = 0;
  Verdict verdict GUARDED_BY(mutex);
};

RecordingGuard::RecordingGuard(const QString& fileName, const RecordContainer& container,
                               std::chrono::milliseconds interval)
    : share_(std::make_shared<Share>(fileName, container, interval)), thread_([share = share_] {
        nameThread("kv-guard");
        runAsBatch();
        run(share);
        MutexLock lock(share->mutex);
        share->hasEnded = true;
        share->changed.notify_all();
      }) {}

RecordingGuard::~RecordingGuard() {
  bool ended = false;
  {
    MutexLock lock(share_->mutex);
    share_->isStopping = true;
    share_->changed.notify_all();
    ended = share_->changed.wait_for(lock, kEndTime,
                                     [this]() REQUIRES(share_->mutex) { return share_->hasEnded; });
  }
  if (ended)
    thread_.join();
  else
    thread_.detach();
}

RecordingGuard::Verdict RecordingGuard::ask(qint64 writtenNs) {
  MutexLock lock(share_->mutex);
  share_->writtenNs = writtenNs;
  return share_->verdict;
}

void RecordingGuard::run(const std::shared_ptr<Share>& share) {
  ReadBack file(share->fileName, share->container);
  qint64 dueNs = 0;  // must be in the file at the next check
  while (true) {
    qint64 writtenNs = 0;
    {
      MutexLock lock(share->mutex);
      if (share->changed.wait_for(lock, share->interval,
                                  [&]() REQUIRES(share->mutex) { return share->isStopping; }))
        return;
      writtenNs = share->writtenNs;
    }
    const bool isWhole = file.readOn();
    const bool grows = file.lengthNs() + kHeldBackNs >= std::exchange(dueNs, writtenNs);
    MutexLock lock(share->mutex);
    if (isWhole && grows) {
      share->verdict.verifiedNs = file.lengthNs();
      continue;
    }
    // A file that is being closed may be rewritten under the reader.
    if (share->isStopping)
      return;
    share->verdict.trouble = isWhole ? QStringLiteral("the file does not grow") : file.failure();
    qCWarning(logOutput, "what was written to \"%s\" cannot be read back : %s", qPrintable(share->fileName),
              qPrintable(share->verdict.trouble));
    return;
  }
}

}  // namespace korvia

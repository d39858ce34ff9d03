#include "PdfRenderer.h"

#include <chrono>
#include <utility>

#include "PdfDocument.h"
#include "SourceThreads.h"

namespace korvia {

namespace {

// Each thread that was left behind may use a core, so there are no more of them.
constexpr int kMostThreads = 4;

}  // namespace

/// The thread with the document. Its own thread: run. The source's thread: the rest, but for cancel: any
/// thread.
class PdfRenderer::Worker {
 public:
  explicit Worker(QString path) : path_(std::move(path)) {}

  void run() {
    MutexLock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [this]() REQUIRES(mutex_) { return leaving_ || work_; });
      if (leaving_)
        return;
      const auto work = std::exchange(work_, {});
      lock.unlock();
      work(*this);
      lock.lock();
      done_ = true;
      changed_.notify_all();
    }
  }

  /// Opened at the first call; null with a reason. Called by the work.
  PdfDocument* document(QString& reason) {
    if (!document_)
      document_ = PdfDocument::open(path_, reason);
    return document_.get();
  }
  const std::atomic<bool>& cancelled() const { return cancelled_; }

  /// Whether the work has ended, as against the time-out and cancel().
  bool runInTime(std::function<void(Worker&)> work, std::chrono::milliseconds timeout) {
    MutexLock lock(mutex_);
    done_ = false;
    work_ = std::move(work);
    changed_.notify_all();
    changed_.wait_for(lock, timeout, [this]() REQUIRES(mutex_) { return done_ || cancelled_; });
    return done_;
  }

  void cancel() {
    cancelled_ = true;
    MutexLock lock(mutex_);
    changed_.notify_all();
  }

  /// The thread ends when its work has ended.
  void leave() {
    cancelled_ = true;
    MutexLock lock(mutex_);
    leaving_ = true;
    changed_.notify_all();
  }

  quint64 thread = 0;

 private:
  const QString path_;
  std::unique_ptr<PdfDocument> document_;  // used by the work alone
  std::atomic<bool> cancelled_{false};
  Mutex mutex_;
  ConditionVariable changed_;
  std::function<void(Worker&)> work_ GUARDED_BY(mutex_);
  bool done_ GUARDED_BY(mutex_) = false;
  bool leaving_ GUARDED_BY(mutex_) = false;
};

PdfRenderer::PdfRenderer(const QString& path, int timeoutMs)
    : path_(path), timeoutMs_(timeoutMs), running_(std::make_shared<std::atomic<int>>(0)) {}

PdfRenderer::~PdfRenderer() {
  leaveWorker();
}

int PdfRenderer::open(QString& reason) {
  struct Answer {
    int count = 0;
    QString reason;
  };
  // The work may outlive the call, so it has its own hold on the answer.
  const auto answer = std::make_shared<Answer>();
  const auto work = [answer](Worker& worker) {
    if (PdfDocument* document = worker.document(answer->reason))
      answer->count = document->pageCount();
  };
  if (!runInTime(work, reason))
    return 0;
  reason = answer->reason;
  return answer->count;
}

QImage PdfRenderer::page(int index, QSize size, QString& reason) {
  struct Answer {
    QImage image;
    QString reason;
  };
  const auto answer = std::make_shared<Answer>();
  const auto work = [answer, index, size](Worker& worker) {
    PdfDocument* document = worker.document(answer->reason);
    if (!document)
      return;
    answer->image = document->page(index, size, &worker.cancelled());
    if (answer->image.isNull())
      answer->reason = QStringLiteral("out of memory");
  };
  if (!runInTime(work, reason))
    return {};
  reason = answer->reason;
  return std::move(answer->image);
}

void PdfRenderer::cancel() {
  cancelled_ = true;
  MutexLock lock(workerMutex_);
  if (worker_)
    worker_->cancel();
}

bool PdfRenderer::runInTime(std::function<void(Worker&)> work, QString& reason) {
  const std::shared_ptr<Worker> worker = startWorker(reason);
  if (!worker)
    return false;
  if (worker->runInTime(std::move(work), std::chrono::milliseconds(timeoutMs_)))
    return true;
  reason = QStringLiteral("takes longer than %1 s").arg(timeoutMs_ / 1000.0);
  leaveWorker();
  return false;
}

std::shared_ptr<PdfRenderer::Worker> PdfRenderer::startWorker(QString& reason) {
  MutexLock lock(workerMutex_);
  // Under the lock, so that cancel() either finds the worker or is seen here.
  if (cancelled_)
    return nullptr;
  if (worker_)
    return worker_;
  if (*running_ >= kMostThreads) {
    reason = QStringLiteral("the pages before have not ended");
    return nullptr;
  }
  ++*running_;
  worker_ = std::make_shared<Worker>(path_);
  worker_->thread = startSourceThread(path_, [worker = worker_, running = running_] {
    worker->run();
    --*running;
  });
  return worker_;
}

void PdfRenderer::leaveWorker() {
  MutexLock lock(workerMutex_);
  if (!worker_)
    return;
  worker_->leave();
  markSourceThreadClosing(worker_->thread);
  worker_.reset();
}

}  // namespace korvia

#include "SnapshotWriter.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>
#include <QSaveFile>
#include <deque>
#include <utility>

#include "DrivePath.h"
#include "FrameExport.h"
#include "ThreadSafety.h"
#include "engine/EngineLog.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

// Quality of QImageWriter that selects the fastest level of zlib: a fifth of the time of the default for a
// few per cent more bytes.
constexpr int kPngQuality = 85;
constexpr int kEndMs = 5000;

/// Writes the file; returns the reason of a failure, else an empty text.
QString writePng(const Frame& frame, const QString& path) {
  const QImage image = toImage(frame);
  if (image.isNull())
    return QStringLiteral("no memory for the picture");
  const QString folder = QFileInfo(path).path();
  if (!QDir().mkpath(folder))
    return QStringLiteral("the folder \"%1\" cannot be made").arg(folder);
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly))
    return file.errorString();
  QImageWriter writer(&file, "png");
  writer.setQuality(kPngQuality);
  if (!writer.write(image))
    return writer.errorString();
  return file.commit() ? QString() : file.errorString();
}

}  // namespace

struct SnapshotWriter::State {
  struct Job {
    FrameRef frame;
    QString path;
  };

  Mutex mutex;
  ConditionVariable changed;
  std::deque<Job> jobs GUARDED_BY(mutex);
  bool busy GUARDED_BY(mutex) = false;  // a job is being written
  bool stop GUARDED_BY(mutex) = false;
};

SnapshotWriter::SnapshotWriter()
    : state_(std::make_shared<State>()), thread_([state = state_] { run(state); }) {}

SnapshotWriter::~SnapshotWriter() {
  const bool flushed = flush(kEndMs);
  {
    MutexLock lock(state_->mutex);
    state_->stop = true;
    state_->changed.notify_all();
  }
  if (flushed) {
    thread_.join();
  } else {
    qCWarning(logOutput, "a snapshot is not written in time, left behind");
    thread_.detach();
  }
}

bool SnapshotWriter::write(const FrameRef& frame, const QString& path) {
  if (!frame)
    return false;
  {
    MutexLock lock(state_->mutex);
    if (state_->jobs.size() < kQueueCapacity) {
      state_->jobs.push_back({frame, path});
      state_->changed.notify_all();
      return true;
    }
  }
  qCWarning(logOutput, "too many snapshots at once, \"%s\" is left out", qPrintable(path));
  return false;
}

bool SnapshotWriter::flush(int timeoutMs) {
  MutexLock lock(state_->mutex);
  return state_->changed.wait_for(
      lock, std::chrono::milliseconds(timeoutMs),
      [this]() REQUIRES(state_->mutex) { return state_->jobs.empty() && !state_->busy; });
}

void SnapshotWriter::run(const std::shared_ptr<State>& state) {
  nameThread("kv-snapshot");
  runAsBatch();
  MutexLock lock(state->mutex);
  for (;;) {
    state->changed.wait(lock, [&]() REQUIRES(state->mutex) { return state->stop || !state->jobs.empty(); });
    if (state->stop)
      return;
    const State::Job job = std::move(state->jobs.front());
    state->jobs.pop_front();
    state->busy = true;
    lock.unlock();
    const QString path = DrivePath::resolve(job.path);
    const QString failure = writePng(*job.frame, path);
    if (failure.isEmpty())
      qCInfo(logOutput, "snapshot \"%s\" written", qPrintable(path));
    else
      qCWarning(logOutput, "snapshot \"%s\" failed : %s", qPrintable(path), qPrintable(failure));
    lock.lock();
    state->busy = false;
    state->changed.notify_all();
  }
}

}  // namespace korvia

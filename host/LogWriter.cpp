#include "LogWriter.h"

#include <pthread.h>

#include <csignal>
#include <thread>
#include <utility>

#include "LogLine.h"
#include "ThreadSafety.h"

namespace korvia {

struct LogWriter::State {
  Target target;
  Mutex mutex;
  ConditionVariable wake;
  ConditionVariable written;
  QByteArray queue GUARDED_BY(mutex);
  quint64 dropped GUARDED_BY(mutex) = 0;  // lines that came after the queue and did not fit
  quint64 added GUARDED_BY(mutex) = 0;
  quint64 done GUARDED_BY(mutex) = 0;  // of those added
  bool endWanted GUARDED_BY(mutex) = false;
};

LogWriter::LogWriter(Target target) : state_(std::make_shared<State>()) {
  state_->target = std::move(target);
  std::thread([state = state_] { run(state); }).detach();
}

LogWriter::~LogWriter() {
  {
    MutexLock lock(state_->mutex);
    state_->endWanted = true;
  }
  state_->wake.notify_one();
}

void LogWriter::add(const QByteArray& line) {
  MutexLock lock(state_->mutex);
  ++state_->added;
  // After one line is dropped, all are dropped until the thread takes the queue. Their count then stands in
  // the log where the lines are missing.
  if (state_->dropped != 0 || state_->queue.size() + line.size() > kQueueBytesMax) {
    ++state_->dropped;
    return;
  }
  state_->queue += line;
  state_->wake.notify_one();
}

bool LogWriter::drain(std::chrono::milliseconds limit) {
  MutexLock lock(state_->mutex);
  const quint64 upTo = state_->added;
  return state_->written.wait_for(lock, limit,
                                  [&]() REQUIRES(state_->mutex) { return state_->done >= upTo; });
}

void LogWriter::run(const std::shared_ptr<State>& state) {
  pthread_setname_np(pthread_self(), "kv-log");
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
  MutexLock lock(state->mutex);
  for (bool ending = false; !ending;) {
    state->wake.wait(
        lock, [&]() REQUIRES(state->mutex) { return state->endWanted || state->added != state->done; });
    ending = state->endWanted;
    QByteArray lines = std::exchange(state->queue, {});
    const quint64 dropped = std::exchange(state->dropped, 0);
    const quint64 taken = state->added;
    lock.unlock();
    if (dropped != 0)
      lines += logLine(QtWarningMsg, "korvia.host.log", QStringLiteral("%1 lines dropped").arg(dropped));
    if (!lines.isEmpty())
      state->target(lines);
    lock.lock();
    state->done = taken;
    state->written.notify_all();
  }
}

}  // namespace korvia

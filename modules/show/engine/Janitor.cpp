#include "Janitor.h"

#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

Janitor::Janitor() : thread_([this] { run(); }) {}

Janitor::~Janitor() {
  {
    MutexLock lock(mutex_);
    stop_ = true;
  }
  wake_.notify_all();
  thread_.join();
}

void Janitor::push(std::function<void()> job) {
  {
    MutexLock lock(mutex_);
    jobs_.push_back(std::move(job));
  }
  wake_.notify_all();
}

void Janitor::run() {
  nameThread("kv-janitor");
  runAsBatch();
  MutexLock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this]() REQUIRES(mutex_) { return stop_ || !jobs_.empty(); });
    if (jobs_.empty())
      return;
    std::function<void()> job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    job();
    job = nullptr;
    lock.lock();
  }
}

}  // namespace korvia

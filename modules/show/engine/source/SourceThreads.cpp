#include "SourceThreads.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <optional>
#include <thread>

#include "ThreadSafety.h"
#include "engine/EngineLog.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kPatience{5};

struct RunningThread {
  QString name;
  std::optional<Clock::time_point> closingSince;
  bool abandoned = false;
};

struct Registry {
  Mutex mutex;
  ConditionVariable ended;
  std::map<quint64, RunningThread> threads GUARDED_BY(mutex);
  quint64 lastNumber GUARDED_BY(mutex) = 0;
};

// Never destroyed: an abandoned thread may end after everything else.
Registry& registry() {
  static Registry* instance = new Registry;
  return *instance;
}

void logAbandoned(Registry& all) REQUIRES(all.mutex) {
  const Clock::time_point now = Clock::now();
  for (auto& [number, thread] : all.threads) {
    if (thread.abandoned || !thread.closingSince || now - *thread.closingSince < kPatience)
      continue;
    thread.abandoned = true;
    qCWarning(logSource, "source does not close, abandoned : %s", qUtf8Printable(thread.name));
  }
}

/// Whether a thread that was asked to end still runs and is not abandoned.
bool isWorthWaiting(const Registry& all) REQUIRES(all.mutex) {
  return std::any_of(all.threads.begin(), all.threads.end(),
                     [](const auto& entry) { return entry.second.closingSince && !entry.second.abandoned; });
}

bool anyClosing(const Registry& all) REQUIRES(all.mutex) {
  return std::any_of(all.threads.begin(), all.threads.end(),
                     [](const auto& entry) { return entry.second.closingSince.has_value(); });
}

}  // namespace

quint64 startSourceThread(const QString& name, std::function<void()> work) {
  Registry& all = registry();
  quint64 number = 0;
  {
    MutexLock lock(all.mutex);
    logAbandoned(all);
    number = ++all.lastNumber;
    all.threads[number].name = name;
  }
  std::thread([number, work = std::move(work)]() mutable {
    nameThread("kv-source");
    runAsBatch();
    work();
    work = nullptr;  // frees what the thread owned before the thread counts as ended
    Registry& registered = registry();
    MutexLock lock(registered.mutex);
    registered.threads.erase(number);
    registered.ended.notify_all();
  }).detach();
  return number;
}

void markSourceThreadClosing(quint64 number) {
  Registry& all = registry();
  MutexLock lock(all.mutex);
  logAbandoned(all);
  const auto found = all.threads.find(number);
  if (found != all.threads.end() && !found->second.closingSince)
    found->second.closingSince = Clock::now();
}

bool waitForClosedSources(int timeoutMs) {
  Registry& all = registry();
  MutexLock lock(all.mutex);
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  for (logAbandoned(all); isWorthWaiting(all); logAbandoned(all)) {
    const Clock::time_point now = Clock::now();
    if (now >= deadline)
      break;
    all.ended.wait_until(lock, std::min(deadline, now + std::chrono::milliseconds(500)));
  }
  return !anyClosing(all);
}

}  // namespace korvia

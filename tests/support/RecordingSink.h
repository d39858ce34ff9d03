// A thread sink that keeps every result, and can be waited on. Any thread.
#pragma once
#include <QVariant>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "IKorviaShowEngineSink.h"
#include "IKorviaShowThreadSink.h"

class RecordingSink final : public IKorviaShowThreadSink, public IKorviaShowEngineSink {
 public:
  struct Result {
    quint64 id;
    QVariant args[4];
  };

  bool isValid() override { return true; }
  bool release() override { return true; }
  void* queryInterface(const Identifier* id, unsigned version) override {
    if (isRequestFor(kIKorviaShowEngineSinkId, id, version))
      return static_cast<IKorviaShowEngineSink*>(this);
    return nullptr;
  }

  void onPostEventResult(quint64 eventId, quint64, QVariant a1, QVariant a2, QVariant a3,
                         QVariant a4) override {
    std::lock_guard lock(mutex_);
    results_.push_back({eventId, {a1, a2, a3, a4}});
    arrived_.notify_all();
  }

  void onAudioData(KorviaShowObjectID, const void*, unsigned, unsigned, int, const void*, int) override {}
  QImage lockBackground(KorviaShowObjectID) override { return {}; }
  void unlockBackground(KorviaShowObjectID, QImage&) override {}
  void onSourceNotify(KorviaShowObjectID id, int what, int param) override {
    std::lock_guard lock(mutex_);
    notifies_.push_back({id, what, param});
    arrived_.notify_all();
  }

  std::vector<Result> results() const {
    std::lock_guard lock(mutex_);
    return results_;
  }
  std::vector<Result> resultsOf(quint64 id) const {
    std::vector<Result> found;
    for (const Result& result : results())
      if (result.id == id)
        found.push_back(result);
    return found;
  }
  void clear() {
    std::lock_guard lock(mutex_);
    results_.clear();
  }

  /// Waits until at least `count` results of the event are there; false after `timeoutMs`.
  bool waitFor(quint64 id, int count = 1, int timeoutMs = 10000) {
    return waitUntil(
        [&] {
          int found = 0;
          for (const Result& result : results_)
            found += result.id == id ? 1 : 0;
          return found >= count;
        },
        timeoutMs);
  }

  bool waitForNotify(int timeoutMs = 10000) {
    return waitUntil([&] { return !notifies_.empty(); }, timeoutMs);
  }

 private:
  struct Notify {
    KorviaShowObjectID id;
    int what;
    int param;
  };

  template <typename Condition>
  bool waitUntil(Condition condition, int timeoutMs) {
    std::unique_lock lock(mutex_);
    return arrived_.wait_for(lock, std::chrono::milliseconds(timeoutMs), condition);
  }

  mutable std::mutex mutex_;
  std::condition_variable arrived_;  // with mutex_
  std::vector<Result> results_;      // guarded by mutex_
  std::vector<Notify> notifies_;     // guarded by mutex_
};

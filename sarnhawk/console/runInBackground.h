// Work that takes too long for the console thread: a document, files on a slow drive.
#pragma once
#include <QObject>
#include <memory>
#include <thread>

#include "ThreadSafety.h"

/// Links a worker with the object that waits for it. Lives on the receiver's thread, as its child.
class BackgroundRelay : public QObject {
 public:
  struct State {
    korvia::Mutex mutex;
    BackgroundRelay* relay GUARDED_BY(mutex) = nullptr;
  };

  explicit BackgroundRelay(QObject* receiver) : QObject(receiver) {
    const korvia::MutexLock lock(_state->mutex);
    _state->relay = this;
  }
  ~BackgroundRelay() override {
    const korvia::MutexLock lock(_state->mutex);
    _state->relay = nullptr;
  }
  std::shared_ptr<State> state() const { return _state; }

 private:
  std::shared_ptr<State> _state = std::make_shared<State>();
};

/// Runs `work` on a thread of its own and calls `done` with its result on the thread of `receiver`, which
/// must be the calling one. A receiver that is deleted meanwhile is not called. Work that hangs is left
/// behind.
template <class Work, class Done>
void runInBackground(QObject* receiver, Work work, Done done) {
  auto* relay = new BackgroundRelay(receiver);
  std::thread([state = relay->state(), work = std::move(work), done = std::move(done)]() mutable {
    auto result = work();
    const korvia::MutexLock lock(state->mutex);
    if (!state->relay)
      return;
    QMetaObject::invokeMethod(
        state->relay,
        [relay = state->relay, result = std::move(result), done = std::move(done)]() mutable {
          relay->deleteLater();
          done(std::move(result));
        },
        Qt::QueuedConnection);
  }).detach();
}

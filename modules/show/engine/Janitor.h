// Destroys objects on its own thread when their destruction may take time, so that neither the engine thread
// nor the console waits. Any thread.
#pragma once
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <thread>

#include "ThreadSafety.h"

namespace korvia {

class Janitor {
 public:
  Janitor();
  /// Waits until all objects are destroyed.
  ~Janitor();
  Janitor(const Janitor&) = delete;
  Janitor& operator=(const Janitor&) = delete;

  /// Takes ownership and destroys the object later.
  template <typename Thing>
  void dispose(Thing thing) {
    // The job is the only owner, so that the caller never destroys the object.
    push([holder = std::make_shared<Thing>(std::move(thing))]() mutable { holder.reset(); });
  }

 private:
  void push(std::function<void()> job);
  void run();

  Mutex mutex_;
  ConditionVariable wake_;
  std::deque<std::function<void()>> jobs_ GUARDED_BY(mutex_);
  bool stop_ GUARDED_BY(mutex_) = false;
  std::thread thread_;
};

}  // namespace korvia

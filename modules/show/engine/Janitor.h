// Destroys objects on its own thread when their destruction may take time, so that neither the engine thread
// nor the console waits. Any thread.
#pragma once
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

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
    auto holder = std::make_shared<Thing>(std::move(thing));
    push([holder]() mutable { holder.reset(); });
  }

 private:
  void push(std::function<void()> job);
  void run();

  std::mutex mutex_;
  std::condition_variable wake_;            // with mutex_
  std::deque<std::function<void()>> jobs_;  // guarded by mutex_
  bool stop_ = false;                       // guarded by mutex_
  std::thread thread_;
};

}  // namespace korvia

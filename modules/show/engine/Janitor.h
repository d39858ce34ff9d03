// Drops things whose end may take time on a thread of its own, so that neither the engine thread nor the
// console waits for them. Any thread.
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
  /// Waits for what was handed over before.
  ~Janitor();
  Janitor(const Janitor&) = delete;
  Janitor& operator=(const Janitor&) = delete;

  /// Takes the thing over and destroys it later.
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

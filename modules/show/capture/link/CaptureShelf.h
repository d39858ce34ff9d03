// Keeps runs of the capture program while they go from one owner to the next, so that a page which the
// operator has logged in to in a preview goes on the channel as it stands. Ends runs that nobody wants on a
// thread of its own, because that takes some milliseconds. Any thread.
#pragma once
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "CaptureProcess.h"
#include "ThreadSafety.h"

namespace korvia {

class CaptureShelf {
 public:
  /// How long a run waits to be taken, if the constructor is not told otherwise.
  static constexpr std::chrono::seconds kPatience{10};

  /// The one of this process. It ends what it has when the application object goes.
  static CaptureShelf& instance();
  explicit CaptureShelf(std::chrono::milliseconds patience = kPatience) : patience_(patience) {}
  ~CaptureShelf();
  CaptureShelf(const CaptureShelf&) = delete;
  CaptureShelf& operator=(const CaptureShelf&) = delete;

  /// Offers a run that was started with this request to whoever asks for the same. It has no listener any
  /// more. May be null.
  void offer(std::unique_ptr<CaptureProcess> process, const CaptureRequest& request) EXCLUDES(mutex_);
  /// A run that shows the same address in the same rate, drawn in the size of the request from now on. Null
  /// when there is none.
  std::unique_ptr<CaptureProcess> take(const CaptureRequest& request, CaptureListener& listener)
      EXCLUDES(mutex_);
  /// Ends a run without waiting for it. It has no listener any more. May be null.
  void end(std::unique_ptr<CaptureProcess> process) EXCLUDES(mutex_);
  /// Ends what it has, and later runs at once.
  void close() EXCLUDES(mutex_);

 private:
  using Clock = std::chrono::steady_clock;

  struct Offer {
    std::unique_ptr<CaptureProcess> process;
    CaptureRequest request;
    Clock::time_point until;
  };

  void put(Offer offer) EXCLUDES(mutex_);
  void run() EXCLUDES(mutex_);
  /// Those whose time is up.
  std::vector<Offer> takeOverdue() REQUIRES(mutex_);

  const std::chrono::milliseconds patience_;
  Mutex mutex_;
  ConditionVariable wake_;
  std::vector<Offer> offers_ GUARDED_BY(mutex_);  // a few, the oldest first
  bool changed_ GUARDED_BY(mutex_) = false;
  bool closed_ GUARDED_BY(mutex_) = false;
  std::thread thread_ GUARDED_BY(mutex_);
};

}  // namespace korvia

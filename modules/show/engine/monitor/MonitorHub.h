// All monitor windows. The engine thread leaves the newest picture of each window here; the thread of this
// class scales and shows them. When that thread cannot keep up, it drops the pictures of strips first.
// Engine thread, except where a call says otherwise.
#pragma once
#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "ThreadSafety.h"
#include "engine/StageClock.h"
#include "engine/frame/Frame.h"
#include "engine/monitor/MonitorSurface.h"
#include "tagKorviaWindowInfo.h"

namespace korvia {

class MonitorHub {
 public:
  /// The windows; the pictures of the last ones are dropped first.
  enum Window : int {
    Pgm = 0,
    Pvm = 1,
    FirstMedia = 2,
    FirstStage = FirstMedia + 8,
    Karaoke = FirstStage + 4,
    WindowCount = Karaoke + 1,
  };

  using MakeFactory = std::function<std::unique_ptr<MonitorSurfaceFactory>()>;

  /// `stages`, which must outlive the hub, gets the time that the pictures of each frame take. `makeFactory`
  /// is called on the monitor thread.
  explicit MonitorHub(StageClock& stages, MakeFactory makeFactory = createMonitorSurfaceFactory)
      : stages_(stages), makeFactory_(std::move(makeFactory)) {}
  ~MonitorHub();
  MonitorHub(const MonitorHub&) = delete;
  MonitorHub& operator=(const MonitorHub&) = delete;

  // Engine thread.
  void open(const tagKorviaShowWindowPackInfo& windows);
  void close();
  /// The window of a bus, a channel or the karaoke has a new size or is another window. Ignored without a
  /// handle and for an object without a window.
  void resizeObject(int objectId, const tagKorviaWindowInfo& info);
  bool isShown(Window window) const { return wanted_[window]; }
  /// Sets the next picture of a window; ignored for a window that does not exist.
  void show(Window window, const FrameRef& picture, const MonitorGuides& guides = {});
  /// Shows the pictures that were set for this frame.
  void commit();

  /// Strip pictures that were dropped. Any thread.
  qint64 droppedPictures() const { return dropped_.load(std::memory_order_relaxed); }

 private:
  struct Shown {
    FrameRef frame;
    MonitorGuides guides;

    friend bool operator==(const Shown&, const Shown&) = default;
  };
  struct Slot {
    tagKorviaWindowInfo info;
    bool changed = false;  // size or window
    Shown next;
  };

  void run();
  void showPictures(std::array<Shown, WindowCount>& pictures) EXCLUDES(mutex_);

  StageClock& stages_;
  const MakeFactory makeFactory_;
  Mutex mutex_;
  ConditionVariable wake_;
  std::array<Slot, WindowCount> slots_ GUARDED_BY(mutex_);
  bool committed_ GUARDED_BY(mutex_) = false;
  bool stop_ GUARDED_BY(mutex_) = false;
  std::array<Shown, WindowCount> staged_;   // engine thread
  std::array<bool, WindowCount> wanted_{};  // engine thread
  std::thread thread_;
  std::atomic<qint64> dropped_{0};

  std::unique_ptr<MonitorSurfaceFactory> factory_;                     // monitor thread
  std::array<std::unique_ptr<MonitorSurface>, WindowCount> surfaces_;  // monitor thread
  std::array<WId, WindowCount> windowIds_{};                           // monitor thread
  std::array<Shown, WindowCount> shown_;                               // monitor thread; the last pictures
};

}  // namespace korvia

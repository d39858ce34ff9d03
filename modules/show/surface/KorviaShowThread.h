// The engine's thread and its event queue. Made and driven from the console thread; the virtuals named
// onThread… and doFrameStep run on the engine thread.
#pragma once
#include <QObject>
#include <QVariant>
#include <thread>
#include <vector>

#include "FrameRate.h"
#include "IKorviaShowThreadSink.h"
#include "ThreadSafety.h"

enum KorviaShowThreadMode : int { ShowThreadNormal = 0 };

namespace korvia {

struct ShowEvent {
  quint64 id = 0;
  QVariant args[4];
};

/// One step of the frame clock.
struct FrameTick {
  qint64 number = 0;
  int missed = 0;     ///< frames since the last step that got no step
  qint64 lateNs = 0;  ///< how long after its deadline the step began
};

}  // namespace korvia

class KorviaShowThread : public QObject {
  Q_OBJECT

 public:
  explicit KorviaShowThread(QObject* parent = nullptr);
  ~KorviaShowThread() override;

  /// Frames per second of the engine's step; values that are not positive and finite are ignored.
  virtual void setFps(float fps);
  virtual void start(IKorviaShowThreadSink* sink, KorviaShowThreadMode mode);
  /// Handles the events that were posted before, ends the thread and returns.
  virtual void stop();
  /// Queues an event for the next frame boundary. Any thread.
  void postEvent(quint64 eventId, QVariant a1 = QVariant(), QVariant a2 = QVariant(),
                 QVariant a3 = QVariant(), QVariant a4 = QVariant());

 protected:
  virtual void onThreadRun();
  virtual void onThreadBegin() {}
  virtual void onThreadEnd() {}
  virtual void onThreadStep(const korvia::FrameTick& tick);
  virtual void onThreadEvent(const korvia::ShowEvent& event) = 0;
  virtual void doFrameStep(const korvia::FrameTick& tick) = 0;

  /// Exact rate of the frame step, restarting the clock; one that is not valid is ignored. Any thread.
  void setFrameRate(korvia::FrameRate rate);
  /// Passes a result to the sink. Engine thread.
  void postResult(quint64 eventId, quint64 result, const QVariant& a1, const QVariant& a2, const QVariant& a3,
                  const QVariant& a4);
  IKorviaShowThreadSink* threadSink() const { return sink_; }

 private:
  /// Sleeps until the next deadline and returns the frame that is due; false when the thread has to end.
  bool waitForTick(korvia::FrameTick& tick);
  void drainEvents();

  IKorviaShowThreadSink* sink_ = nullptr;
  std::thread thread_;

  korvia::Mutex mutex_;
  korvia::ConditionVariable wake_;
  std::vector<korvia::ShowEvent> events_ GUARDED_BY(mutex_);
  bool stopRequested_ GUARDED_BY(mutex_) = false;
  korvia::FrameRate rate_ GUARDED_BY(mutex_);
  bool clockRestart_ GUARDED_BY(mutex_) = true;

  // Swapped with events_, so that handling the events of a frame does not allocate.
  std::vector<korvia::ShowEvent> handled_;       // engine thread
  std::chrono::steady_clock::time_point epoch_;  // engine thread
  qint64 clockFrame_ = 0;                        // engine thread; frames since epoch_
  qint64 frameNumber_ = 0;                       // engine thread; frames since the start
};

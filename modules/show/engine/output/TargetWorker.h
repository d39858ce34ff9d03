// The work of a target on its own thread, from opening to closing the writer. Target is the side of the
// encoder; both share a TargetShare, which lives until both have ended.
#pragma once
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <atomic>
#include <memory>
#include <optional>

#include "PacketQueue.h"
#include "Target.h"
#include "TargetWriter.h"
#include "ThreadSafety.h"

namespace korvia {

struct TargetShare {
  explicit TargetShare(TargetSettings own)
      : settings(std::move(own)), queue(settings.queueBytes, settings.queueNs) {}

  void endAccepting() REQUIRES(mutex);
  /// Takes the state of the connection over, unless the target ends.
  void follow(const TargetLink& link) REQUIRES(mutex);

  const TargetSettings settings;
  Mutex mutex;
  ConditionVariable changed;  ///< anything below, or the writer
  PacketQueue queue GUARDED_BY(mutex);
  std::optional<qint64> originNs GUARDED_BY(mutex);  // encoder's time of the first key frame
  qint64 pictureEndNs GUARDED_BY(mutex) = 0;         // of the newest picture, queued or not
  bool accepting GUARDED_BY(mutex) = true;           // false from the first end or failure on
  QDeadlineTimer finishDeadline GUARDED_BY(mutex);   // set when accepting becomes false
  bool ended GUARDED_BY(mutex) = false;              // all is closed and the thread about to end
  TargetFigures figures GUARDED_BY(mutex);           // the queue knows its own figures
  QElapsedTimer sinceUp GUARDED_BY(mutex);           // started when the state becomes Up
  std::atomic<bool> keyRequested{false};             // by the writer, and not yet taken by the encoder
};

class TargetWorker {
 public:
  TargetWorker(std::shared_ptr<TargetShare> share, std::unique_ptr<TargetWriter> writer);

  /// Runs the whole target.
  void run();

 private:
  enum class Step { Continue, Ended, Failed };

  bool start();
  Step step();
  /// Called when no more packets are accepted.
  Step stepToEnd(bool drained, const QDeadlineTimer& deadline);
  /// Called once a second: lets the writer check, and logs dropped frames.
  void check(bool finishing);
  void close(bool failed);

  const std::shared_ptr<TargetShare> share_;
  const std::unique_ptr<TargetWriter> writer_;
  QString reason_;
  qint64 packetsWritten_ = 0;
  bool endAsked_ = false;
  QElapsedTimer sinceCheck_;
  qint64 lastDropped_ = 0;
  qint64 lastBytes_ = 0;
};

}  // namespace korvia

// The work of a target on its own thread, from opening to closing the writer. Target is the side of the
// encoder; both share a TargetShare, which lives until both have ended.
#pragma once
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

#include "PacketQueue.h"
#include "Target.h"
#include "TargetWriter.h"

namespace korvia {

struct TargetShare {
  explicit TargetShare(TargetSettings own)
      : settings(std::move(own)), queue(settings.queueBytes, settings.queueNs) {}

  /// Holding `mutex`.
  void endAccepting();

  const TargetSettings settings;
  std::mutex mutex;
  std::condition_variable changed;  ///< anything below, or the writer
  PacketQueue queue;                // guarded by mutex
  std::optional<qint64> originNs;   // guarded by mutex; encoder's time of the first key frame
  qint64 pictureEndNs = 0;          // guarded by mutex; of the newest picture, queued or not
  bool accepting = true;            // guarded by mutex; false from the first end or failure on
  QDeadlineTimer finishDeadline;    // guarded by mutex; set when accepting becomes false
  bool ended = false;               // guarded by mutex; all is closed and the thread about to end
  TargetFigures figures;            // guarded by mutex; but for the queue's figures
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
};

}  // namespace korvia

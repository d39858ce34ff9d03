// One recording from its first frame to its closed file, on a thread of its own. The engine's side is
// RecordOutput; both share a RecordState, which outlives whichever ends first.
#pragma once
#include <QElapsedTimer>
#include <QString>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>

#include "FrameQueue.h"
#include "ProgramOutput.h"
#include "RecordPipeline.h"
#include "RecordSettings.h"
#include "engine/frame/FramePool.h"

namespace korvia {

struct RecordState {
  explicit RecordState(int queueCapacity) : queue(queueCapacity) {}

  std::mutex mutex;
  std::condition_variable changed;  ///< anything below, or the pipeline
  FrameQueue queue;                 // guarded by mutex
  bool accepting = true;            // guarded by mutex; false from finish() or the first failure on
  bool finishing = false;           // guarded by mutex
  bool finished = false;            // guarded by mutex; the file is closed and the thread about to end
  OutputFigures figures;            // guarded by mutex
  QString fileName;                 // guarded by mutex; empty until the file exists
};

class RecordWorker {
 public:
  RecordWorker(RecordSettings settings, std::shared_ptr<RecordState> state);

  /// Runs the whole recording.
  void run();

 private:
  enum class Step { Continue, Ended, Failed };

  bool start();
  Step step();
  void feed(const QueuedFrame& queued);
  void stopAccepting();
  bool hasSpace() const;
  /// Once a second: free space, dropped frames, rates.
  void check();
  void measure();
  void close(bool failed);

  const RecordSettings settings_;
  const std::shared_ptr<RecordState> state_;
  std::unique_ptr<RecordPipeline> pipeline_;
  std::unique_ptr<FramePool> scaled_;
  QString fileName_;
  QString reason_;
  bool streamEnded_ = false;
  qint64 framesFed_ = 0;
  QElapsedTimer sinceFinish_;
  QElapsedTimer sinceCheck_;
  qint64 lastFrames_ = 0;
  qint64 lastBytes_ = 0;
  qint64 lastDropped_ = 0;
};

}  // namespace korvia

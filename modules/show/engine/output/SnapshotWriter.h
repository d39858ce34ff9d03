// Writes frames as full-size PNG files on a thread of its own. Engine thread; nothing here waits for a disk
// but flush() and the destructor, and these for a bounded time.
#pragma once
#include <QString>
#include <memory>
#include <thread>

#include "engine/frame/Frame.h"

namespace korvia {

class SnapshotWriter {
 public:
  /// Pictures that may wait; a further one is refused.
  static constexpr int kQueueCapacity = 4;

  SnapshotWriter();
  ~SnapshotWriter();
  SnapshotWriter(const SnapshotWriter&) = delete;
  SnapshotWriter& operator=(const SnapshotWriter&) = delete;

  /// Queues the picture. The folder is made; the file appears whole, in the place of one of the same name.
  /// False, with a log line, when the queue is full or the frame is null. A failure to write is logged.
  bool write(const FrameRef& frame, const QString& path);
  /// Waits until all that was queued is written or has failed; false after the time-out.
  bool flush(int timeoutMs = 5000);

 private:
  struct State;
  static void run(const std::shared_ptr<State>& state);

  const std::shared_ptr<State> state_;  // outlives the writer when a disk never answers
  std::thread thread_;
};

}  // namespace korvia

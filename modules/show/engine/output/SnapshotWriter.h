// Writes frames as PNG files of full size on its own thread. Engine thread; only flush() and the destructor
// wait for the disk, with a time-out.
#pragma once
#include <QString>
#include <memory>
#include <thread>

#include "engine/frame/Frame.h"

namespace korvia {

class SnapshotWriter {
 public:
  /// Capacity of the queue; further pictures are refused.
  static constexpr int kQueueCapacity = 4;

  SnapshotWriter();
  ~SnapshotWriter();
  SnapshotWriter(const SnapshotWriter&) = delete;
  SnapshotWriter& operator=(const SnapshotWriter&) = delete;

  /// Queues the picture. The folder is made; the complete file replaces one of the same name. False, with a
  /// log line, when the queue is full or the frame is null. A write error is logged.
  bool write(const FrameRef& frame, const QString& path);
  /// Waits until all queued pictures are written or have failed; false after the time-out.
  bool flush(int timeoutMs = 5000);

 private:
  struct State;
  static void run(const std::shared_ptr<State>& state);

  const std::shared_ptr<State> state_;  // outlives the writer when the disk hangs
  std::thread thread_;
};

}  // namespace korvia

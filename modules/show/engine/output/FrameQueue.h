// A ring buffer of frames for an output, with a fixed capacity, so that queueing never allocates. Not
// thread-safe: guarded by its owner.
#pragma once
#include <QtGlobal>
#include <utility>
#include <vector>

#include "engine/frame/Frame.h"

namespace korvia {

struct QueuedFrame {
  FrameRef frame;
  qint64 index = 0;  ///< render frames since the start of the output
};

class FrameQueue {
 public:
  explicit FrameQueue(int capacity) : ring_(static_cast<std::size_t>(capacity)) {}

  bool isEmpty() const { return count_ == 0; }
  int size() const { return static_cast<int>(count_); }
  /// False, with nothing changed, when the queue is full.
  bool push(const FrameRef& frame, qint64 index) {
    if (count_ == ring_.size())
      return false;
    ring_[(first_ + count_) % ring_.size()] = {frame, index};
    ++count_;
    return true;
  }
  /// The oldest frame. Not on an empty queue.
  const QueuedFrame& front() const { return ring_[first_]; }
  /// Not on an empty queue.
  QueuedFrame pop() {
    QueuedFrame frame = std::exchange(ring_[first_], {});
    first_ = (first_ + 1) % ring_.size();
    --count_;
    return frame;
  }

 private:
  std::vector<QueuedFrame> ring_;
  std::size_t first_ = 0;
  std::size_t count_ = 0;
};

}  // namespace korvia

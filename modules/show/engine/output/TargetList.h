// The targets of an encoder: lets targets join at a key frame and leave, and delivers each packet to all of
// them. Any thread; a call waits at most for the delivery of one packet, which only queues it.
#pragma once
#include <atomic>
#include <memory>
#include <vector>

#include "Target.h"
#include "ThreadSafety.h"
#include "engine/Janitor.h"

namespace korvia {

class TargetList {
 public:
  /// The janitor destroys targets that leave, since their destruction may wait for a disk.
  explicit TargetList(Janitor& janitor) : janitor_(janitor) {}
  ~TargetList() { finishAll(); }
  TargetList(const TargetList&) = delete;
  TargetList& operator=(const TargetList&) = delete;

  /// The target gets all packets from the next key frame on. After finishAll() it is finished at once.
  void join(std::shared_ptr<Target> target);
  /// The target gets no more packets and finishes; ignored when it is not in the list.
  void leave(const Target& target);
  /// Takes no lock.
  bool isEmpty() const { return count_ == 0; }

  /// True when a target waits for a key frame that was not requested yet; the caller requests it from the
  /// encoder.
  bool takeKeyRequest();
  /// Delivers the next packet of the encoder. A target that takes no more packets leaves.
  void deliver(const Packet& packet);
  /// The encoder has ended: all targets finish and leave.
  void finishAll();

 private:
  struct Entry {
    std::shared_ptr<Target> target;
    bool waiting = true;
  };

  void addEntry(Entry entry) REQUIRES(mutex_);
  void removeEntry(const Target* target) REQUIRES(mutex_);
  void beginAtKeyFrame() REQUIRES(mutex_);

  Janitor& janitor_;
  Mutex mutex_;
  std::vector<Entry> entries_ GUARDED_BY(mutex_);
  bool keyAsked_ GUARDED_BY(mutex_) = false;  // a key frame was asked for and has not come yet
  bool ended_ GUARDED_BY(mutex_) = false;
  std::atomic<std::size_t> count_{0};  // of entries_
};

}  // namespace korvia

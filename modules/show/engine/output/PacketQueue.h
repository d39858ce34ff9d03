// Packets that wait for a target, bounded in bytes and in time. A full queue drops packets up to the next
// key frame, since the pictures before it refer to dropped ones. Not thread-safe: guarded by its owner.
#pragma once
#include <deque>
#include <utility>

#include "Packet.h"

namespace korvia {

class PacketQueue {
 public:
  PacketQueue(qint64 maxBytes, qint64 maxNs) : maxBytes_(maxBytes), maxNs_(maxNs) {}

  bool isEmpty() const { return packets_.empty(); }
  qint64 bytes() const { return bytes_; }
  /// Time from the beginning of the first packet to the end of the last.
  qint64 durationNs() const { return isEmpty() ? 0 : packets_.back().endNs() - packets_.front().ptsNs; }

  /// False when the packet is dropped: the queue is full, or was full and no key frame has come since.
  bool push(Packet packet) {
    if (inGap_ && !packet.keyFrame)
      return false;
    const qint64 beginNs = isEmpty() ? packet.ptsNs : packets_.front().ptsNs;
    inGap_ = bytes_ + packet.bytes > maxBytes_ || packet.endNs() - beginNs > maxNs_;
    if (inGap_)
      return false;
    bytes_ += packet.bytes;
    packets_.push_back(std::move(packet));
    return true;
  }
  /// Not on an empty queue.
  Packet pop() {
    Packet packet = std::move(packets_.front());
    packets_.pop_front();
    bytes_ -= packet.bytes;
    return packet;
  }
  void clear() {
    packets_.clear();
    bytes_ = 0;
  }

 private:
  const qint64 maxBytes_;
  const qint64 maxNs_;
  std::deque<Packet> packets_;
  qint64 bytes_ = 0;
  bool inGap_ = false;
};

}  // namespace korvia

// What one output gets from an encoder, which outputs with the same settings share: the packets of the frames
// from its start to its stop, for its targets. Any thread; a call waits at most for the delivery of one
// packet, which only queues it.
#pragma once
#include <QString>
#include <atomic>
#include <limits>
#include <memory>

#include "TargetList.h"

namespace korvia {

class EncoderShare {
 public:
  /// `label` is the output in the log, as the subject of a sentence. `burstFrames` is the group in which the
  /// output would have its frames encoded. Frames before `beginNs` of the encoder's time are not its own. The
  /// janitor destroys targets that leave.
  EncoderShare(QString label, int burstFrames, qint64 beginNs, Janitor& janitor)
      : label_(std::move(label)), burstFrames_(burstFrames), beginNs_(beginNs), targets_(janitor) {}

  /// Adds a target, which begins at a key frame; the encoder makes one of the next frame.
  void join(std::shared_ptr<Target> target) { targets_.join(std::move(target)); }
  /// Removes a target, which finishes with the packets that it got.
  void leave(const Target& target) { targets_.leave(target); }
  bool hasTargets() const { return !targets_.isEmpty(); }

  /// Frames from `endNs` on are not its own: its targets finish when they have the packets before.
  void end(qint64 endNs) { endNs_ = endNs; }
  bool isEnding() const { return endNs_ != kEndless; }
  /// No packet follows, because all are delivered or the encoder has ended; `failure` is empty when it has
  /// not failed. All targets finish.
  void close(const QString& failure) EXCLUDES(mutex_);
  bool isClosed() const EXCLUDES(mutex_);

  /// True when a target waits for a key frame, which has to be the one at `frameNs`.
  bool takeKeyRequest(qint64 frameNs) { return frameNs >= beginNs_ && targets_.takeKeyRequest(); }
  /// Takes its own from the packets of the encoder, which come in their order.
  void deliver(const Packet& packet);

  const QString& label() const { return label_; }
  int burstFrames() const { return burstFrames_; }
  qint64 framesEncoded() const { return framesEncoded_; }
  /// Why the encoder failed before the end of the output; empty as long as it did not.
  QString failure() const EXCLUDES(mutex_);

 private:
  static constexpr qint64 kEndless = std::numeric_limits<qint64>::max();

  const QString label_;
  const int burstFrames_;
  const qint64 beginNs_;
  TargetList targets_;
  std::atomic<qint64> endNs_{kEndless};
  std::atomic<qint64> framesEncoded_{0};
  mutable Mutex mutex_;
  bool closed_ GUARDED_BY(mutex_) = false;
  QString failure_ GUARDED_BY(mutex_);
};

}  // namespace korvia

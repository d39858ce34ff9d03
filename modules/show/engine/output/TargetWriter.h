// What one kind of target does with its packets: open, write, end, close. Used on the target's own thread
// only, which may hang in here without holding up anything but this target.
#pragma once
#include <QString>
#include <functional>

#include "Packet.h"

namespace korvia {

/// How a target ended.
struct TargetOutcome {
  bool failed = false;
  QString reason;  ///< why it failed
  qint64 framesWritten = 0;
  qint64 framesDropped = 0;  ///< that are missing between the first and the last frame
};

class TargetWriter {
 public:
  enum class Progress { Open, Ended, Failed };
  using Wake = std::function<void()>;

  virtual ~TargetWriter() = default;

  /// Called once, before any packet. `wake` is to be called, from any thread, when hasRoom() or progress()
  /// may have changed. False with the reason in failure().
  virtual bool open(Wake wake) = 0;
  /// Where the packets go: a file or an address. Empty while there is none.
  virtual QString location() const = 0;
  /// Whether a packet can be written without it being queued for long. Takes no lock.
  virtual bool hasRoom() const = 0;
  /// The first packet is a key frame with the time 0.
  virtual void write(const Packet& packet) = 0;
  /// No more packets: progress() becomes Ended when all are written. Only called after a packet.
  virtual void end() = 0;
  /// Takes no lock.
  virtual Progress progress() const = 0;
  virtual QString failure() const = 0;
  /// Asked once a second; false, with a log line and the reason in failure(), ends the target in time for
  /// what was queued.
  virtual bool mayGoOn() { return true; }
  virtual qint64 bytesWritten() const = 0;
  /// Called once, also when open() has failed: releases everything and logs the outcome.
  virtual void close(const TargetOutcome& outcome) = 0;
};

}  // namespace korvia

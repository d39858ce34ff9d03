// The operations of one kind of target: open, write, end, close. Called on the thread of the target only,
// which may hang in them without blocking anything but this target.
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

/// The connection of a target to what takes its data.
struct TargetLink {
  enum class State {
    Connecting,  ///< nothing was taken yet
    Up,          ///< data are taken
    Lost,        ///< refused or broken off, and tried again
  };

  State state = State::Connecting;
  QString reason;   ///< why it is lost, without addresses
  int retryMs = 0;  ///< until the next try
};

/// What a writer of files tells of what is on the disk.
struct DiskFigures {
  qint64 writtenNs = 0;     ///< of pictures, over all files
  qint64 roomSeconds = -1;  ///< until the disk is full at the bitrate of the tracks; -1 when unknown
  /// How far it was read back and is whole, but for the last seconds of files that were closed; -1 before
  /// the first time.
  qint64 verifiedNs = -1;
  QString trouble;           ///< why something is not whole; empty when all is
  qint64 framesLeftOut = 0;  ///< that are in no file, because the disk had no room
};

class TargetWriter {
 public:
  enum class Progress { Open, Ended, Failed };
  using Wake = std::function<void()>;

  virtual ~TargetWriter() = default;

  /// Called once, before any packet. `wake` must be called, from any thread, when hasRoom() or progress()
  /// may have changed. On failure false, with the reason in failure().
  virtual bool open(Wake wake) = 0;
  /// The file or address of the target; empty while there is none.
  virtual QString location() const = 0;
  /// Whether a packet can be written without waiting long in a queue. Takes no lock.
  virtual bool hasRoom() const = 0;
  /// Writes a packet. The first one is a key frame with time 0.
  virtual void write(const Packet& packet) = 0;
  /// No more packets follow: progress() becomes Ended when all are written. Only called after a packet.
  virtual void end() = 0;
  /// Takes no lock.
  virtual Progress progress() const = 0;
  virtual QString failure() const = 0;
  /// Called once a second. False, with a log line and the reason in failure(), ends the target early enough
  /// for the queued packets to be written.
  virtual bool mayGoOn() { return true; }
  virtual qint64 bytesWritten() const = 0;
  /// Whether an end that is not written in time is a failure. A file would be incomplete; a server that hangs
  /// gets no end.
  virtual bool needsEnd() const { return true; }
  /// Takes no lock.
  virtual TargetLink link() const {
    return {bytesWritten() > 0 ? TargetLink::State::Up : TargetLink::State::Connecting, {}, 0};
  }
  virtual DiskFigures disk() const { return {}; }
  /// True once when the writer waits for a key frame, which is then asked for.
  virtual bool takeKeyRequest() { return false; }
  /// Called once, also when open() has failed: releases everything and logs the outcome.
  virtual void close(const TargetOutcome& outcome) = 0;
};

}  // namespace korvia

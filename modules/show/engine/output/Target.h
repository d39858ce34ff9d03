// Where packets of an encoder go: a file, later streams. Each target has a bounded queue and a thread of its
// own; one that is slow or hangs leaves out its own packets and goes on at a key frame. Nothing here waits
// for a disk or a network except waitFinished() and the destructor. Any thread; push() on the encoder's.
#pragma once
#include <QString>
#include <memory>
#include <thread>

#include "Packet.h"
#include "TargetWriter.h"

namespace korvia {

struct TargetSettings {
  QString label;                         ///< in the log, as the subject of a sentence
  const char* threadName = "kv-target";  ///< at most 15 characters
  /// What may wait for a disk or a network that stalls.
  qint64 queueBytes = 32LL * 1024 * 1024;
  qint64 queueNs = 10'000'000'000;
  /// How long what was queued may take to be written after the end.
  int finishTimeoutMs = 10000;
};

enum class TargetState {
  Waiting,    ///< for its first key frame, or for its writer to take the first bytes
  Up,         ///< bytes were written and nothing failed since
  Finishing,  ///< takes no more packets, writes what is queued
  Finished,
  Failed,
};

struct TargetFigures {
  TargetState state = TargetState::Waiting;
  QString reason;            ///< why it failed, or ended without being asked
  QString location;          ///< file or address; empty while there is none
  qint64 framesWritten = 0;  ///< handed to the writer
  qint64 framesDropped = 0;  ///< left out here
  qint64 framesSkipped = 0;  ///< left out by the encoder since the join
  qint64 bytesWritten = 0;
  qint64 queuedBytes = 0;
  qint64 queuedNs = 0;
};

struct TargetShare;

class Target {
 public:
  /// Starts at once: the writer is opened on the target's thread.
  Target(TargetSettings settings, std::unique_ptr<TargetWriter> writer);
  /// Finishes and waits for the end, a little longer than the settings' time-out at most; a thread that does
  /// not end is left behind.
  virtual ~Target();
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  /// The next packet of the stream. What comes before the first key frame is ignored, and the stamps that the
  /// writer sees begin at 0 with that key frame. Never blocks. False when the target takes no more packets.
  bool push(const Packet& packet);
  /// Ends the target: what is queued is written and finalised in the background.
  void finish();
  /// Whether it has finished or failed, waiting for it at most this long; with 0 it only asks.
  bool waitFinished(int timeoutMs);
  TargetFigures figures() const;

 private:
  const std::shared_ptr<TargetShare> share_;
  std::thread thread_;
};

}  // namespace korvia

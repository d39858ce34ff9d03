// The destination of the packets of an encoder: a file, a server, viewers. Each target has a bounded queue
// and its own thread. A slow or hanging target drops its own packets and continues at a key frame. Only
// waitFinished() and the destructor wait for a disk or a network. Any thread; push() on the thread of the
// encoder.
#pragma once
#include <QString>
#include <memory>
#include <thread>

#include "Packet.h"
#include "TargetWriter.h"

namespace korvia {

/// What a target is, in the order of the report.
enum class TargetKind { Rtmp0, Rtmp1, RtmpLocal, Http, Udp, Hls, Record };

inline constexpr std::size_t kTargetKinds = 7;

/// The name of the target on its page of the output settings.
QString targetName(TargetKind kind);

struct TargetSettings {
  QString label;                         ///< in the log, as the subject of a sentence
  const char* threadName = "kv-target";  ///< at most 15 characters
  /// Limits of the queue while a disk or a network stalls.
  qint64 queueBytes = 32LL * 1024 * 1024;
  qint64 queueNs = 10'000'000'000;
  /// Time-out for writing the queued packets after finish().
  int finishTimeoutMs = 10000;
  TargetKind kind = TargetKind::Record;
};

enum class TargetState {
  Waiting,    ///< for its first key frame, or for its writer to take the first bytes
  Up,         ///< bytes were written and nothing failed since
  Lost,       ///< its writer tries again by itself
  Finishing,  ///< takes no more packets, writes what is queued
  Finished,
  Failed,
};

struct TargetFigures {
  TargetState state = TargetState::Waiting;
  QString reason;            ///< why it failed, is lost, or ended without being asked
  QString location;          ///< file or address; empty while there is none
  qint64 framesWritten = 0;  ///< handed to the writer
  qint64 framesDropped = 0;  ///< left out here
  qint64 framesSkipped = 0;  ///< left out by the encoder since the join
  qint64 bytesWritten = 0;
  float kbps = 0;     ///< written in the last second
  int upSeconds = 0;  ///< since it came up; 0 unless it is up
  int retryMs = 0;    ///< until the next try; 0 unless it is lost
  DiskFigures disk;
  qint64 queuedBytes = 0;
  qint64 queuedNs = 0;
};

struct TargetShare;

class Target {
 public:
  /// Starts at once: the thread of the target opens the writer.
  Target(TargetSettings settings, std::unique_ptr<TargetWriter> writer);
  /// Finishes and waits for the end, at most a little longer than the time-out of the settings. A thread
  /// that hangs is detached.
  virtual ~Target();
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  /// Queues the next packet of the stream. Packets before the first key frame are ignored, and the time
  /// stamps that the writer sees begin at 0 with that key frame. Never blocks. False when the target takes
  /// no more packets.
  bool push(const Packet& packet);
  /// Ends the target: queued packets are written and the file is finalised in the background.
  void finish();
  /// Waits until it has finished or failed; false after the time-out. 0 returns at once.
  bool waitFinished(int timeoutMs);
  TargetFigures figures() const;
  TargetKind kind() const;
  /// True once when the writer waits for a key frame.
  bool takeKeyRequest();

 private:
  const std::shared_ptr<TargetShare> share_;
  std::thread thread_;
};

}  // namespace korvia

// The picture encoder of a slot: program frames in, packets out to any number of targets. It has its own
// thread; when it cannot keep up it drops its own frames and never holds up the engine. Engine thread, but
// for figures() and waitFinished().
#pragma once
#include <QElapsedTimer>
#include <QString>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "EncodePipeline.h"
#include "FrameQueue.h"
#include "TargetList.h"
#include "engine/frame/FramePool.h"

namespace korvia {

struct EncoderSettings {
  QString label;  ///< in the log, as the subject of a sentence
  PictureEncoding picture;
  /// Frames that may wait for the encoder: a second of the show, 75 MB of 1920x1080 at 25 frames a second.
  int queueCapacity = 25;
  /// How long what was pushed may take to be encoded after the end.
  int finishTimeoutMs = 10000;
};

struct EncoderFigures {
  QString failure;  ///< why it failed; empty as long as it did not
  qint64 framesEncoded = 0;
  qint64 framesDropped = 0;
  float videoKbps = 0;
  float framesPerSecond = 0;
};

class SlotEncoder {
 public:
  /// Targets that leave are handed to the janitor.
  SlotEncoder(EncoderSettings settings, Janitor& janitor);
  /// Finishes, and waits until what was pushed is encoded and queued with the targets.
  ~SlotEncoder();
  SlotEncoder(const SlotEncoder&) = delete;
  SlotEncoder& operator=(const SlotEncoder&) = delete;

  /// One program frame; `frameIndex` counts render frames from the start of the slot and makes the time
  /// stamp. Never blocks. Without a target nothing is encoded.
  void pushFrame(const FrameRef& frame, qint64 frameIndex);

  /// A target joins at a key frame, which the encoder makes of the next frame.
  void join(std::shared_ptr<Target> target) { targets_.join(std::move(target)); }
  /// The target finishes with what it has got so far.
  void leave(const Target& target) { targets_.leave(target); }
  /// `next` begins at the key frame at which `last` ends: each frame is in exactly one of them.
  void replace(const Target& last, std::shared_ptr<Target> next) { targets_.replace(last, std::move(next)); }

  /// Takes no more frames. Targets finish when they have all packets of what was pushed.
  void finish();
  /// Whether all packets are with the targets after finish(), waiting for it at most this long.
  bool waitFinished(int timeoutMs);
  EncoderFigures figures() const;

 private:
  enum class Step { Continue, Ended, Failed };

  void run();
  Step step();
  Step stepToEnd(bool drained);
  bool feed(const QueuedFrame& queued);
  bool open();
  void onPacket(const Packet& packet);
  void wake();
  /// Once a second: dropped frames, rates.
  void measure();
  void close(bool failed);

  const EncoderSettings settings_;
  TargetList targets_;

  // Of the encoder's own thread.
  std::unique_ptr<FramePool> scaled_;
  QString reason_;
  bool streamEnded_ = false;
  QElapsedTimer sinceFinish_;
  QElapsedTimer sinceMeasure_;
  qint64 lastFrames_ = 0;
  qint64 lastBytes_ = 0;
  qint64 lastDropped_ = 0;

  std::atomic<qint64> framesEncoded_{0};
  std::atomic<qint64> bytesEncoded_{0};

  mutable std::mutex mutex_;
  std::condition_variable changed_;  ///< anything below, or the pipeline
  FrameQueue queue_;                 // guarded by mutex_
  bool accepting_ = true;            // guarded by mutex_; false from finish() or a failure on
  bool finished_ = false;            // guarded by mutex_; the thread is about to end
  EncoderFigures figures_;           // guarded by mutex_; but for framesEncoded

  // Of the encoder's own thread too; its streaming thread calls onPacket() and wake().
  std::unique_ptr<EncodePipeline> pipeline_;
  std::thread thread_;
};

}  // namespace korvia

// The encoders of an output, or of several outputs with the same settings: take program frames and sound and
// deliver packets to the targets of each output. They have a thread of their own. When it cannot keep up it
// drops frames and never blocks the engine. Engine thread, except figures() and waitFinished().
#pragma once
#include <QElapsedTimer>
#include <QString>
#include <array>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "EncodePipeline.h"
#include "EncoderShare.h"
#include "EncoderTrials.h"
#include "FrameQueue.h"
#include "PacketInterleaver.h"
#include "SoundEncodePipeline.h"
#include "SoundQueue.h"
#include "ThreadSafety.h"
#include "engine/frame/FramePool.h"

namespace korvia {

struct EncoderSettings {
  QString label;  ///< of the output in the log, as the subject of a sentence
  PictureEncoding picture;
  /// Of the sound; 0 for none.
  int soundKbps = 0;
  /// By how many samples the sound comes after the picture that it belongs to.
  int soundDelaySamples = 0;
  /// Capacity of the queue: one second of the show, 75 MB for 1080p25.
  int queueCapacity = 25;
  /// Frames are encoded in groups of this size, because an encoder that gets several frames in one go works
  /// with warm caches. A crash loses up to one group more. 1 encodes each frame at once, for live viewers.
  /// Outputs that share an encoder get the smallest of their groups.
  int burstFrames = 1;
  /// Time-out for encoding the queued frames after finish().
  int finishTimeoutMs = 10000;
  KorviaShowEncodeAccelerator accelerator = EncodeAcceleratorSoftware;
  /// What is known of the encoders of GPUs; shared by all outputs.
  std::shared_ptr<EncoderTrials> trials = std::make_shared<EncoderTrials>();
};

struct EncoderFigures {
  qint64 framesEncoded = 0;
  qint64 framesDropped = 0;
  float videoKbps = 0;
  float framesPerSecond = 0;
  float soundKbps = 0;
  float samplesPerSecond = 0;
  qint64 encodeDelayMs =
      0;  ///< mean time from a frame's push to the delivery of its packet, of the last second
  /// Time stamp of the newest picture that was delivered, less that of the newest sound; 0 without sound.
  qint64 pictureLessSoundMs = 0;
  QString frameTypes;  ///< of the last second, as "I 1, P 24"
};

class SlotEncoder {
 public:
  /// The janitor destroys targets that leave.
  SlotEncoder(EncoderSettings settings, Janitor& janitor);
  /// Finishes and waits until all pushed frames are encoded and queued in the targets.
  ~SlotEncoder();
  SlotEncoder(const SlotEncoder&) = delete;
  SlotEncoder& operator=(const SlotEncoder&) = delete;

  /// The share of an output, which begins with the next frame that is pushed. Label and group are taken from
  /// its settings.
  std::shared_ptr<EncoderShare> addShare(const EncoderSettings& settings);
  /// The share ends with the last frame that was pushed. After the last share the encoder finishes.
  void endShare(EncoderShare& share);
  /// Whether an output with these settings can have a share: the encoder makes the same of its frames, and
  /// still takes some.
  bool suits(const EncoderSettings& settings) const;

  /// Pushes one program frame: the n-th call makes the n-th time stamp. Never blocks. Without a target
  /// nothing is encoded.
  void pushFrame(const FrameRef& frame);
  /// Pushes the sound of the frames that were pushed since the last call. Never blocks.
  void pushSound(StereoSpan sound);

  /// Takes no more frames. Targets finish when they have the packets of all pushed frames.
  void finish();
  /// Waits until all packets are delivered after finish(). False after the time-out.
  bool waitFinished(int timeoutMs);
  EncoderFigures figures() const;

 private:
  static constexpr qint64 kNoSound = -1;

  using Shares = std::vector<std::shared_ptr<EncoderShare>>;

  enum class Step { Continue, Ended, Failed };

  void run();
  Step step();
  Step stepToEnd(bool drained);
  /// Engine thread.
  bool isWanted() const;
  void takeBurst() EXCLUDES(mutex_);
  /// Other threads.
  Shares openShares() const EXCLUDES(sharesMutex_);
  bool hasTargets() const;
  bool feed(const QueuedFrame& queued);
  bool takeKeyRequest(qint64 frameNs);
  void feedSound(qint64 firstSample);
  bool open();
  bool openPicture(const EncoderElement& encoder);
  /// Goes on with x264 after the failure of another encoder. False when there is nothing to go on with.
  bool replaceEncoder();
  void closePipelines();
  bool hasEnded() const;
  void giveUpSound();
  void onPacket(const Packet& packet);
  void wake() EXCLUDES(mutex_);
  /// Called once a second: logs dropped frames and computes the rates.
  void measure() EXCLUDES(mutex_);
  void measureTimes(EncoderFigures& figures, qint64 frames);
  void close(bool failed) EXCLUDES(mutex_);

  const EncoderSettings settings_;
  Janitor& janitor_;

  // Engine thread only.
  Shares ownShares_;
  qint64 pushedFrames_ = 0;
  qint64 pushedSamples_ = 0;

  mutable Mutex sharesMutex_;
  Shares shares_ GUARDED_BY(sharesMutex_);        // the same, for the other threads
  bool closed_ GUARDED_BY(sharesMutex_) = false;  // the encoder has ended, a new share closes at once
  QString closeReason_ GUARDED_BY(sharesMutex_);  // of a failure

  // Used on the thread of the encoder only.
  std::unique_ptr<FramePool> scaled_;
  QString reason_;
  std::vector<float> samples_;  // interleaved, from the queue
  bool soundFailed_ = false;
  bool streamEnded_ = false;
  int generation_ = 0;  // of the encoders, see Track
  QElapsedTimer sinceFinish_;
  QElapsedTimer sinceMeasure_;
  qint64 lastFrames_ = 0;
  qint64 lastBytes_ = 0;
  qint64 lastSamples_ = 0;
  qint64 lastSoundBytes_ = 0;
  qint64 lastDropped_ = 0;
  qint64 lastDelayNs_ = 0;
  qint64 lastKeyFrames_ = 0;

  std::atomic<qint64> framesEncoded_{0};
  std::atomic<qint64> bytesEncoded_{0};
  std::atomic<qint64> samplesEncoded_{0};
  std::atomic<qint64> soundBytesEncoded_{0};
  std::atomic<qint64> keyFramesEncoded_{0};
  std::atomic<qint64> delayNs_{0};  // sum over all frames
  std::atomic<qint64> newestPictureNs_{0};
  std::atomic<qint64> newestSoundNs_{kNoSound};
  /// When the newest frames were pushed, by their index; more than the queue and the encoder hold.
  std::array<std::atomic<qint64>, 512> pushedNs_{};

  mutable Mutex mutex_;
  ConditionVariable changed_;  ///< anything below, or the pipeline
  FrameQueue queue_ GUARDED_BY(mutex_);
  SoundQueue sound_ GUARDED_BY(mutex_);
  int burstFrames_ GUARDED_BY(mutex_) = 1;     // the smallest group of all shares
  bool inBurst_ GUARDED_BY(mutex_) = false;    // the queue is being emptied
  bool started_ GUARDED_BY(mutex_) = false;    // no frame waits any more for the start of the encoder
  bool accepting_ GUARDED_BY(mutex_) = true;   // false from finish() or a failure on
  bool finished_ GUARDED_BY(mutex_) = false;   // the thread is about to end
  EncoderFigures figures_ GUARDED_BY(mutex_);  // framesEncoded stands in the atomic

  // Used on the thread of the encoder only; the streaming threads call onPacket() and wake().
  std::unique_ptr<PacketInterleaver> interleaver_;
  std::unique_ptr<EncodePipeline> pipeline_;
  std::unique_ptr<SoundEncodePipeline> soundPipeline_;  // null without sound
  std::thread thread_;
};

}  // namespace korvia

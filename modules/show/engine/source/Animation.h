// Plays the pictures of an animated GIF or WebP like those of a film: the source's thread decodes a few of
// them ahead, and the clock counts render frames. Console thread: setPlaying, setHold, rewind, close. The
// source's thread: run. Engine thread: pull. Any thread: the rest.
#pragma once
#include <QImage>
#include <atomic>

#include "FrameRate.h"
#include "MediaClock.h"
#include "RateMeter.h"
#include "ThreadSafety.h"
#include "VideoQueue.h"
#include "engine/frame/FramePool.h"

class QImageReader;

namespace korvia {

class PictureFile;

class Animation {
 public:
  struct Pull {
    FrameRef frame;      ///< null while there is no animation
    bool ended = false;  ///< the last picture of the last pass has been shown for its time at this call
  };

  /// The rate is that of the render. It plays until setPlaying(false).
  Animation(FrameRate rate, FrameSize renderSize);

  void setPlaying(bool playing) { clock_.setPlaying(playing); }
  void setHold(bool hold) { clock_.setHold(hold); }
  /// Goes back to the first picture, which is shown also on pause, and counts the passes anew.
  void rewind();
  /// Ends run().
  void close();

  /// Decodes until close(); returns at once when the file is no animation.
  void run(PictureFile& file);

  /// The picture for this tick.
  Pull pull(int ticks);

  bool isAnimated() const { return animated_; }
  /// Of one pass, known when the first one has been decoded; 0 before.
  std::int64_t durationNs() const { return durationNs_; }
  /// Time in the pass of the picture on show.
  std::int64_t positionNs() const { return positionNs_; }
  float framesPerSecond() const { return arrivals_.perSecond(); }
  std::int64_t framesDecoded() const { return framesDecoded_; }
  std::int64_t framesShown() const { return framesShown_; }
  VideoQueue::Figures figures() const { return queue_.figures(); }

 private:
  enum class Pass { Ended, Interrupted };

  /// Queues the pictures of one pass from `image` on, with time stamps from `timeNs_` on.
  Pass decodePass(QImageReader& reader, QImage image);
  FrameRef frameOf(const QImage& image);
  void markEnd();
  /// After an interruption: false when it was close().
  bool resume();
  /// Waits for rewind(); false after close().
  bool waitForRewind();

  MediaClock clock_;
  VideoQueue queue_;
  FramePool opaquePool_;
  FramePool alphaPool_;
  std::atomic<bool> animated_{false};
  std::atomic<std::int64_t> durationNs_{0};
  std::atomic<std::int64_t> positionNs_{0};
  RateMeter arrivals_;
  std::atomic<std::int64_t> framesDecoded_{0};
  std::atomic<std::int64_t> framesShown_{0};
  std::int64_t timeNs_ = 0;  // of the next picture on the queue's time line
  int picturesInPass_ = 0;
  Mutex mutex_;
  ConditionVariable wake_;
  bool rewound_ GUARDED_BY(mutex_) = false;
  bool closing_ GUARDED_BY(mutex_) = false;
};

}  // namespace korvia

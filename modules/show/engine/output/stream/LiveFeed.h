// The newest seconds of a stream, for any number of viewers who read at their own pace. The memory does not
// grow with the viewers: who is too slow continues at a key frame. Any thread.
#pragma once
#include <QByteArray>
#include <deque>
#include <vector>

#include "ThreadSafety.h"

namespace korvia {

/// A viewer that sleeps while there is nothing to read. Both calls are made under the lock of the feed and
/// may not call back into it.
class LiveReader {
 public:
  virtual void sleep() = 0;
  virtual void wake() = 0;

 protected:
  ~LiveReader() = default;
};

class LiveFeed {
 public:
  enum class Next { Chunk, Wait, End };

  /// Where a viewer reads on. A new one begins with the header and the newest key frame.
  struct Place {
    qint64 next = -1;
  };

  explicit LiveFeed(qint64 maxBytes = 16LL * 1024 * 1024) : maxBytes_(maxBytes) {}

  /// The next chunk of the stream. `header` is what a viewer needs before any key frame.
  void push(const QByteArray& header, const QByteArray& data, bool keyFrame);
  /// No chunk follows, and no viewer reads on.
  void close();

  /// The next chunk for a viewer. When there is none yet the reader is put to sleep, and woken later.
  Next next(Place& place, QByteArray& chunk, LiveReader& reader);
  /// The reader is not used any more.
  void forget(const LiveReader& reader);
  /// Of the kept chunks.
  qint64 bytes() const;

 private:
  /// Groups of pictures that are kept: two seconds each.
  static constexpr int kGroups = 4;

  struct Chunk {
    QByteArray data;
    bool keyFrame = false;
  };

  void trim() REQUIRES(mutex_);
  void wakeAll() REQUIRES(mutex_);

  const qint64 maxBytes_;
  mutable Mutex mutex_;
  QByteArray header_ GUARDED_BY(mutex_);
  std::deque<Chunk> chunks_ GUARDED_BY(mutex_);
  qint64 first_ GUARDED_BY(mutex_) = 0;       // number of the first kept chunk
  qint64 newestKey_ GUARDED_BY(mutex_) = -1;  // number of a chunk, perhaps dropped; -1 for none
  int keys_ GUARDED_BY(mutex_) = 0;           // key frames among the kept chunks
  qint64 bytes_ GUARDED_BY(mutex_) = 0;
  bool closed_ GUARDED_BY(mutex_) = false;
  std::vector<LiveReader*> sleeping_ GUARDED_BY(mutex_);
};

}  // namespace korvia

// The newest JPEG of one picture, for all viewers of the web server: it is encoded once, and not at all while
// nobody looks. The console publishes, the web server reads. Any thread.
#pragma once
#include <QByteArray>
#include <chrono>
#include <vector>

#include "EventFeed.h"
#include "ThreadSafety.h"

namespace korvia {

class PictureBoard {
 public:
  struct Picture {
    QByteArray jpeg;
    qint64 number = 0;  // grows with each picture
  };
  enum class Wait { Allowed, Over };
  enum class Next { Picture, Asleep, None };

  /// An older picture is not shown any more, because it would look live. Two seconds, and some for the
  /// transport.
  static constexpr std::chrono::milliseconds kFreshFor{2500};

  // The console's side.

  /// Whether somebody has asked for the picture within the last two seconds.
  bool isWanted() const;
  void publish(const QByteArray& jpeg);
  /// There is no picture any more.
  void clear();

  // The web server's side.

  void open();
  /// Wakes all sleepers; none is put to sleep afterwards.
  void close();
  /// The newest picture, if its number is above `after`. Without one the sleeper is put to sleep, if it may
  /// wait, and woken by the next picture or by wakeAll().
  Next next(qint64 after, Wait wait, WebSleeper& sleeper, Picture& picture);
  /// Whether there is a picture that may be shown, of any number.
  bool isFresh() const;
  void forget(const WebSleeper& sleeper);
  void wakeAll();

 private:
  using Clock = std::chrono::steady_clock;

  bool isFreshAt(Clock::time_point now) const REQUIRES(mutex_);
  void wakeSleeping() REQUIRES(mutex_);

  mutable Mutex mutex_;
  Picture picture_ GUARDED_BY(mutex_);
  Clock::time_point published_ GUARDED_BY(mutex_);
  Clock::time_point asked_ GUARDED_BY(mutex_) = Clock::time_point::min();
  bool closed_ GUARDED_BY(mutex_) = true;
  std::vector<WebSleeper*> sleeping_ GUARDED_BY(mutex_);
};

}  // namespace korvia

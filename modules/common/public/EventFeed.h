// What the viewers of "/events" are told as server-sent events: the states of the show, each told to a new
// viewer and then at every change, and moments such as takes. The console tells, the web server reads. Any
// thread; a viewer that reads slowly costs no memory, since it gets the newest states when it has fallen
// behind.
#pragma once
#include <QByteArray>
#include <QJsonObject>
#include <deque>
#include <map>
#include <vector>

#include "ThreadSafety.h"

namespace korvia {

/// A request of the web server that sleeps while there is nothing to answer. Both calls are made under the
/// lock of the board that it waits for, and may not call back into it.
class WebSleeper {
 public:
  virtual void sleep() = 0;
  virtual void wake() = 0;

 protected:
  ~WebSleeper() = default;
};

class EventFeed {
 public:
  enum class Levels { Without, With };
  enum class Next { Text, Wait, End };

  /// Where a viewer reads on.
  struct Place {
    Levels levels = Levels::Without;
    qint64 next = -1;
    qint64 nextLevels = 0;
  };

  // The console's side.

  /// Tells the new state when it differs from the last one of that name.
  void setState(const QByteArray& name, const QJsonObject& state);
  /// Tells what has just happened. Who comes later is not told.
  void tell(const QByteArray& name, const QJsonObject& moment);
  /// Tells the newest levels to the viewers who asked for them.
  void setLevels(const QJsonObject& levels);
  int viewers() const;
  bool hasViewers() const { return viewers() > 0; }
  bool hasLevelViewers() const;

  // The web server's side.

  void open();
  /// Tells "bye" to all viewers, and ends them.
  void close();
  /// A comment for every viewer, which keeps the connection alive and detects viewers that are gone.
  void beat();
  void join(Levels levels);
  /// After the last viewer has left all states are forgotten, because the console tells nothing then.
  void leave(Levels levels, const WebSleeper& sleeper);
  /// The next text for a viewer. When there is none yet the sleeper is put to sleep, and woken later. After
  /// the end of the feed and its "bye" nothing follows.
  Next next(Place& place, QByteArray& text, WebSleeper& sleeper);

 private:
  static constexpr std::size_t kKept = 64;

  struct State {
    QJsonObject values;
    QByteArray text;
  };

  void add(const QByteArray& text) REQUIRES(mutex_);
  QByteArray eventText(const QByteArray& name, const QJsonObject& values) REQUIRES(mutex_);
  QByteArray allStates() const REQUIRES(mutex_);
  void wakeAll() REQUIRES(mutex_);

  mutable Mutex mutex_;
  std::map<QByteArray, State> states_ GUARDED_BY(mutex_);
  std::deque<QByteArray> texts_ GUARDED_BY(mutex_);  // the newest, the last one last
  qint64 first_ GUARDED_BY(mutex_) = 0;              // number of the first kept text
  QByteArray levels_ GUARDED_BY(mutex_);
  qint64 levelsNumber_ GUARDED_BY(mutex_) = 0;
  qint64 eventId_ GUARDED_BY(mutex_) = 0;
  int viewers_ GUARDED_BY(mutex_) = 0;
  int levelViewers_ GUARDED_BY(mutex_) = 0;
  bool closed_ GUARDED_BY(mutex_) = true;
  std::vector<WebSleeper*> sleeping_ GUARDED_BY(mutex_);
};

}  // namespace korvia

// The flight recorder: writes every posted event, every result and every call that changes the engine as one
// JSON object a line. Off unless KORVIA_TRACE names a file. Any thread: a call copies its values into a
// bounded queue, and the thread of the black box encodes and writes them ten times a second.
#pragma once
#include <QElapsedTimer>
#include <QFile>
#include <QString>
#include <QVariant>
#include <array>
#include <atomic>
#include <thread>
#include <vector>

#include "ThreadSafety.h"

namespace korvia {

class BlackBox {
 public:
  static constexpr std::size_t kQueuedLinesMax = 8192;

  /// The instance of the process. Opens the file of KORVIA_TRACE at the first use.
  static BlackBox& instance();

  BlackBox(const BlackBox&) = delete;
  BlackBox& operator=(const BlackBox&) = delete;
  /// Queued lines are lost; call flush() or open() before.
  ~BlackBox();

  /// Writes to another file from now on, truncating it; an empty name ends the recording. Waits until the
  /// old file is written. False, with a log line, when the file cannot be written. Console thread.
  bool open(const QString& fileName);
  bool isOpen() const { return open_.load(std::memory_order_relaxed); }
  /// Waits until all queued lines are in the file, two seconds at most.
  void flush();

  void post(quint64 eventId, const QVariant& a1, const QVariant& a2, const QVariant& a3, const QVariant& a4);
  void result(quint64 eventId, const QVariant& a1, const QVariant& a2, const QVariant& a3,
              const QVariant& a4);
  /// Notes a synchronous call. `name` is a literal, `object` the id of its object, 0 for none. At most four
  /// arguments.
  void call(const char* name, int object, const QVariantList& args = {});

 private:
  enum class Kind { Post, Result, Call };
  enum class Rest { Written, Lost };

  /// One line before it is encoded.
  struct Note {
    Kind kind = Kind::Post;
    qint64 timeMs = 0;
    quint64 eventId = 0;  // of a call: the object id
    const char* name = nullptr;
    int argCount = 0;
    std::array<QVariant, 4> args;
  };

  BlackBox();
  void note(Note note) EXCLUDES(mutex_);
  void endWriter(Rest rest) EXCLUDES(mutex_);
  void run();
  void write(const std::vector<Note>& notes, quint64 dropped);
  static QByteArray lineOf(const Note& note);

  std::atomic<bool> open_{false};
  QFile file_;  // owned by the writer thread while it runs
  std::thread writer_;

  Mutex mutex_;
  ConditionVariable wake_;
  ConditionVariable written_;
  std::vector<Note> queue_ GUARDED_BY(mutex_);
  quint64 dropped_ GUARDED_BY(mutex_) = 0;  // notes since the last of queue_ that found it full
  quint64 noted_ GUARDED_BY(mutex_) = 0;
  quint64 done_ GUARDED_BY(mutex_) = 0;  // those of noted_ that are in the file
  bool flushWanted_ GUARDED_BY(mutex_) = false;
  bool endWanted_ GUARDED_BY(mutex_) = false;
  QElapsedTimer clock_ GUARDED_BY(mutex_);
};

}  // namespace korvia

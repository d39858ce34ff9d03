// The flight recorder: every posted event, every result, every call that changes the engine, one JSON
// object a line, flushed per line. Off unless KORVIA_TRACE names a file. Any thread.
#pragma once
#include <QElapsedTimer>
#include <QFile>
#include <QJsonObject>
#include <QString>
#include <QVariant>
#include <atomic>
#include <mutex>

namespace korvia {

class BlackBox {
 public:
  /// The one of the process. Opens the file of KORVIA_TRACE at the first use.
  static BlackBox& instance();

  /// Writes to another file from now on, truncating it; an empty name ends the recording. False with a log
  /// line when the file cannot be written.
  bool open(const QString& fileName);
  bool isOpen() const { return open_.load(std::memory_order_relaxed); }

  void post(quint64 eventId, const QVariant& a1, const QVariant& a2, const QVariant& a3, const QVariant& a4);
  void result(quint64 eventId, const QVariant& a1, const QVariant& a2, const QVariant& a3,
              const QVariant& a4);
  /// A synchronous call; `object` is the object id that it names, 0 for none.
  void call(const char* name, int object, const QVariantList& args = {});

 private:
  BlackBox();
  void event(const char* direction, quint64 eventId, const QVariantList& args);
  void write(QJsonObject line);

  std::atomic<bool> open_{false};
  std::mutex mutex_;
  QFile file_;           // guarded by mutex_
  QElapsedTimer clock_;  // guarded by mutex_
};

}  // namespace korvia

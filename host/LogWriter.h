// Takes log lines from any thread and writes them to one target on a thread of its own, so that a target that
// blocks (a stopped terminal, a pipe without a reader) does not block who logs. Lines that do not fit into
// the queue are dropped and counted.
#pragma once
#include <QByteArray>
#include <chrono>
#include <functional>
#include <memory>

namespace korvia {

class LogWriter {
 public:
  /// Called on the writer's thread with whole lines; may block. It may be called after the LogWriter is gone.
  using Target = std::function<void(const QByteArray& lines)>;

  static constexpr int kQueueBytesMax = 1024 * 1024;

  explicit LogWriter(Target target);
  LogWriter(const LogWriter&) = delete;
  LogWriter& operator=(const LogWriter&) = delete;
  /// Returns at once. The thread writes the queued lines and ends by itself.
  ~LogWriter();

  /// `line` ends in a line feed. Never waits for the target.
  void add(const QByteArray& line);
  /// Waits until all that was added so far is written; false when it takes longer than `limit`.
  bool drain(std::chrono::milliseconds limit);

 private:
  struct State;
  static void run(const std::shared_ptr<State>& state);

  std::shared_ptr<State> state_;  // shared with the thread
};

}  // namespace korvia

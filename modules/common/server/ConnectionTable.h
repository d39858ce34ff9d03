// The open connections of the web server. Ends those that take more than 10 s for a request, and keeps the
// number of connections of each address small, so that slow clients cannot keep others out. Server threads;
// a thread of its own looks at the deadlines.
#pragma once
#include <netinet/in.h>

#include <chrono>
#include <functional>
#include <list>
#include <thread>

#include "ThreadSafety.h"

struct MHD_Connection;

namespace korvia {

class ConnectionTable {
 public:
  static constexpr int kPerAddress = 16;
  static constexpr int kInAll = 128;
  static constexpr std::chrono::seconds kRequestLimit{10};
  static constexpr std::chrono::milliseconds kTick{250};

  /// `onTick` is called on the thread of the table every kTick while there are connections.
  explicit ConnectionTable(std::function<void()> onTick);
  ~ConnectionTable();
  ConnectionTable(const ConnectionTable&) = delete;
  ConnectionTable& operator=(const ConnectionTable&) = delete;

  /// When there are too many connections, of the address or in all, one of them is ended: the oldest that has
  /// not sent a whole request, or else the oldest that is not a stream, or else the new one.
  void onConnected(MHD_Connection* connection, int socket, in_addr address);
  /// To be called before the socket is closed.
  void onClosed(MHD_Connection* connection);

  /// The first line of a request was read: its time begins. Before that, the time since the connection or the
  /// answer before counts.
  void onRequest(MHD_Connection* connection);
  /// The head of the request was read.
  void onHead(MHD_Connection* connection);
  /// The answer is a stream, which may last.
  void onStream(MHD_Connection* connection);
  void onAnswered(MHD_Connection* connection);

  /// Connections that are open, without those that were ended here.
  int open() const;
  /// Connections that were ended here since the start: too many, and too slow.
  qint64 refused() const;
  qint64 expired() const;

 private:
  using Clock = std::chrono::steady_clock;
  enum class State { Waiting, Answering, Streaming, Ended };

  struct Entry {
    MHD_Connection* connection;
    int socket;
    in_addr_t address;
    State state;
    Clock::time_point deadline;
  };
  using Entries = std::list<Entry>;

  Entry* find(MHD_Connection* connection) REQUIRES(mutex_);
  void setState(MHD_Connection* connection, State state) REQUIRES(mutex_);
  void restartTime(MHD_Connection* connection) REQUIRES(mutex_);
  /// Ends the most dispensable of the entries for which `counts` is true, when there are more than `limit`.
  void keepTo(int limit, const std::function<bool(const Entry&)>& counts) REQUIRES(mutex_);
  static void end(Entry& entry);
  void run();

  const std::function<void()> onTick_;
  mutable Mutex mutex_;
  ConditionVariable wake_;
  Entries entries_ GUARDED_BY(mutex_);  // the oldest first
  qint64 refused_ GUARDED_BY(mutex_) = 0;
  qint64 expired_ GUARDED_BY(mutex_) = 0;
  bool stop_ GUARDED_BY(mutex_) = false;
  std::thread thread_;
};

}  // namespace korvia

#include "ConnectionTable.h"

#include <pthread.h>
#include <sys/socket.h>

#include <algorithm>

namespace korvia {

ConnectionTable::ConnectionTable(std::function<void()> onTick)
    : onTick_(std::move(onTick)), thread_([this] { run(); }) {}

ConnectionTable::~ConnectionTable() {
  {
    const MutexLock lock(mutex_);
    stop_ = true;
  }
  wake_.notify_all();
  thread_.join();
}

void ConnectionTable::onConnected(MHD_Connection* connection, int socket, in_addr address) {
  const MutexLock lock(mutex_);
  entries_.push_back({connection, socket, address.s_addr, State::Waiting, Clock::now() + kRequestLimit});
  keepTo(kPerAddress, [&address](const Entry& entry) { return entry.address == address.s_addr; });
  keepTo(kInAll, [](const Entry&) { return true; });
  wake_.notify_all();
}

void ConnectionTable::onClosed(MHD_Connection* connection) {
  const MutexLock lock(mutex_);
  entries_.remove_if([connection](const Entry& entry) { return entry.connection == connection; });
}

void ConnectionTable::onRequest(MHD_Connection* connection) {
  const MutexLock lock(mutex_);
  restartTime(connection);
}

void ConnectionTable::onHead(MHD_Connection* connection) {
  const MutexLock lock(mutex_);
  setState(connection, State::Answering);
}

void ConnectionTable::onStream(MHD_Connection* connection) {
  const MutexLock lock(mutex_);
  setState(connection, State::Streaming);
}

void ConnectionTable::onAnswered(MHD_Connection* connection) {
  const MutexLock lock(mutex_);
  setState(connection, State::Waiting);
  restartTime(connection);
}

int ConnectionTable::open() const {
  const MutexLock lock(mutex_);
  return static_cast<int>(std::count_if(entries_.begin(), entries_.end(),
                                        [](const Entry& entry) { return entry.state != State::Ended; }));
}

qint64 ConnectionTable::refused() const {
  const MutexLock lock(mutex_);
  return refused_;
}

qint64 ConnectionTable::expired() const {
  const MutexLock lock(mutex_);
  return expired_;
}

ConnectionTable::Entry* ConnectionTable::find(MHD_Connection* connection) {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [connection](const Entry& entry) {
    return entry.connection == connection && entry.state != State::Ended;
  });
  return found == entries_.end() ? nullptr : &*found;
}

void ConnectionTable::setState(MHD_Connection* connection, State state) {
  if (Entry* entry = find(connection))
    entry->state = state;
}

void ConnectionTable::restartTime(MHD_Connection* connection) {
  if (Entry* entry = find(connection))
    entry->deadline = Clock::now() + kRequestLimit;
}

void ConnectionTable::keepTo(int limit, const std::function<bool(const Entry&)>& counts) {
  const auto isCounted = [&counts](const Entry& entry) {
    return entry.state != State::Ended && counts(entry);
  };
  if (std::count_if(entries_.begin(), entries_.end(), isCounted) <= limit)
    return;
  // The states stand in the order in which they are given up.
  Entry* victim = &entries_.back();
  State given = State::Streaming;
  for (Entry& entry : entries_) {
    if (&entry == &entries_.back() || !isCounted(entry) || entry.state >= given)
      continue;
    victim = &entry;
    given = entry.state;
  }
  ++refused_;
  end(*victim);
}

void ConnectionTable::end(Entry& entry) {
  entry.state = State::Ended;
  // The server reads the end of the connection then, and closes it as if the client had left.
  ::shutdown(entry.socket, SHUT_RDWR);
}

void ConnectionTable::run() {
  pthread_setname_np(pthread_self(), "kv-web-limits");
  MutexLock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this]() REQUIRES(mutex_) { return stop_ || !entries_.empty(); });
    if (wake_.wait_for(lock, kTick, [this]() REQUIRES(mutex_) { return stop_; }))
      return;
    const Clock::time_point now = Clock::now();
    for (Entry& entry : entries_) {
      if (entry.state == State::Ended || entry.state == State::Streaming || now < entry.deadline)
        continue;
      ++expired_;
      end(entry);
    }
    lock.unlock();
    onTick_();
    lock.lock();
  }
}

}  // namespace korvia

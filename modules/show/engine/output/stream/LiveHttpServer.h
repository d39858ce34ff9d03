// Serves live streams to viewers. One server a port, shared by the targets that use the port, which each add
// a path. It listens where all servers of the program do (ListenPlace.h). Any thread; libmicrohttpd answers
// on a thread of its own for each address.
#pragma once
#include <QString>
#include <map>
#include <memory>
#include <vector>

#include "LiveFeed.h"
#include "ThreadSafety.h"

struct MHD_Connection;
struct MHD_Daemon;

namespace korvia {

class LiveHttpServer {
 public:
  /// The server of a port, which begins to listen with its first user and ends with the last. Null, with the
  /// reason, when the port cannot be had.
  static std::shared_ptr<LiveHttpServer> at(int port, QString* reason);

  /// Ends all connections.
  ~LiveHttpServer();
  LiveHttpServer(const LiveHttpServer&) = delete;
  LiveHttpServer& operator=(const LiveHttpServer&) = delete;

  /// What is served under a path, until whoever added it removes it.
  struct Content {
    std::shared_ptr<LiveFeed> feed;
    const char* contentType = nullptr;
  };
  /// False when the path is taken.
  bool add(const QString& path, const Content& content);
  void remove(const QString& path);

  /// Answers one request. Server thread.
  int answer(MHD_Connection* connection, const QString& path, const char* method) const;

  /// A path of the settings as it is served: with one slash in front and none at its end.
  static QString cleanPath(const QString& path);

 private:
  LiveHttpServer() = default;
  bool listen(const QString& address, int port, QString* reason);
  /// Without a feed when nothing is served there.
  Content find(const QString& path) const EXCLUDES(mutex_);

  std::vector<MHD_Daemon*> daemons_;  // one for each address
  mutable Mutex mutex_;
  std::map<QString, Content> contents_ GUARDED_BY(mutex_);  // by path
};

}  // namespace korvia

// A path of the live server, served for as long as this object lives. Any thread.
#pragma once
#include <memory>
#include <utility>

#include "LiveHttpServer.h"

namespace korvia {

class ServedPath {
 public:
  /// Null, with the reason, when the port cannot be had or the path is taken.
  static std::shared_ptr<ServedPath> make(int port, const QString& path,
                                          const LiveHttpServer::Content& content, QString* reason) {
    std::shared_ptr<LiveHttpServer> server = LiveHttpServer::at(port, reason);
    if (!server)
      return nullptr;
    if (server->add(path, content))
      return std::shared_ptr<ServedPath>(new ServedPath(std::move(server), path));
    *reason = QStringLiteral("the path is in use");
    return nullptr;
  }
  ~ServedPath() { server_->remove(path_); }
  ServedPath(const ServedPath&) = delete;
  ServedPath& operator=(const ServedPath&) = delete;

 private:
  ServedPath(std::shared_ptr<LiveHttpServer> server, QString path)
      : server_(std::move(server)), path_(std::move(path)) {}

  const std::shared_ptr<LiveHttpServer> server_;
  const QString path_;
};

}  // namespace korvia

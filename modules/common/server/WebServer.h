// The web server of the console: the operator's page, the state of the show, pictures, events and commands,
// and the segments of the stream. The interface is called on the console thread; libmicrohttpd answers the
// requests on a thread of its own for each address.
#pragma once
#include <memory>
#include <vector>

#include "ConnectionTable.h"
#include "IKorviaWebServer.h"
#include "RequestRouter.h"

struct MHD_Daemon;

namespace korvia {

class WebServer : public IKorviaWebServer {
 public:
  WebServer() = default;
  virtual ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  bool isValid() override { return true; }
  bool release() override;
  void* queryInterface(const Identifier* id, unsigned version) override;
  int open(IKorviaWebServerSink* sink, int* httpPort) override;
  void close() override;
  void serveSegments(const QString& path, const QString& folder) override;

  // Server thread.
  ConnectionTable& connections() { return *connections_; }
  RequestRouter& router() { return *router_; }

 private:
  void onTick();
  bool startDaemons(const std::vector<int>& sockets);

  std::unique_ptr<ConnectionTable> connections_;  // while the server is open
  std::unique_ptr<RequestRouter> router_;         // while the server is open
  std::vector<MHD_Daemon*> daemons_;
  QString segmentPath_;
  QString segmentFolder_;
  int ticks_ = 0;  // thread of the connection table
};

}  // namespace korvia

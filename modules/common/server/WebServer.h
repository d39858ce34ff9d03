// Shows the status board in the browser of the operator: "/status.json" and a page at "/", and serves the
// segments of the stream to its players, on loopback only. The interface is called on the console thread; a
// thread of libmicrohttpd answers the requests.
#pragma once
#include <QByteArray>
#include <QElapsedTimer>
#include <list>

#include "IKorviaWebServer.h"
#include "ThreadSafety.h"

struct MHD_Daemon;
struct MHD_Connection;

namespace korvia {

class WebServer : public IKorviaWebServer {
 public:
  WebServer();
  virtual ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  bool isValid() override { return true; }
  bool release() override;
  void* queryInterface(const Identifier* id, unsigned version) override;
  int open(IKorviaWebServerSink* sink, int* httpPort) override;
  void close() override;
  void serveSegments(const QString& path, const QString& folder) override;

  /// Answers one request. Server thread.
  int answer(MHD_Connection* connection, const char* url, const char* method);

  /// Both keep the list of connections. When there are too many, the oldest is shut down, so that clients
  /// which never finish a request cannot block others. Server thread.
  void onConnectionStarted(MHD_Connection* connection);
  void onConnectionClosed(MHD_Connection* connection);

 private:
  struct Segments {
    QString path;    // with one slash in front and none at its end
    QString folder;  // of this machine; empty when there is none
  };

  QByteArray statusJson() const;
  /// The file of the segments under a path; -1 for anything else. The caller closes it.
  int openSegment(const QString& path) const EXCLUDES(mutex_);

  // Set before the thread of the server starts and constant while it runs.
  QByteArray page_;
  QByteArray pagePolicy_;  // content security policy that allows the page's own script and style
  QElapsedTimer uptime_;
  MHD_Daemon* daemon_ = nullptr;
  mutable Mutex mutex_;
  Segments segments_ GUARDED_BY(mutex_);
  // Open connections, the oldest first. Server thread only.
  std::list<MHD_Connection*> connections_;
};

}  // namespace korvia

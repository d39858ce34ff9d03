#include "WebServer.h"

#include <microhttpd.h>
#include <unistd.h>

#include <QLoggingCategory>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <thread>

#include "ListenPlace.h"
#include "LoopbackPort.h"
#include "WebDesk.h"
#include "WebRequest.h"

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(lcWeb, "korvia.web", QtInfoMsg)

constexpr int kDefaultPort = 8800;
constexpr int kPortTries = 100;
// Above the limits of ConnectionTable: connections that were shut down wait for their end.
constexpr unsigned kConnectionLimit = 4 * ConnectionTable::kInAll;
constexpr unsigned kIdleLimitS = 10;
constexpr std::size_t kConnectionMemoryBytes = 32 * 1024;
constexpr int kTicksPerBeat = 5000 / static_cast<int>(ConnectionTable::kTick.count());
constexpr int kGoodbyeTries = 20;
constexpr std::chrono::milliseconds kGoodbyePause{10};

MHD_Result onRequest(void* server, MHD_Connection* connection, const char* url, const char* method,
                     const char* /*version*/, const char* /*upload*/, std::size_t* uploadSize, void** state) {
  auto* web = static_cast<WebServer*>(server);
  auto* request = static_cast<WebRequest*>(*state);
  if (!request->isHeadRead)
    web->connections().onHead(connection);
  return static_cast<MHD_Result>(web->router().answer(*request, url, method, uploadSize));
}

void* onRequestLine(void* server, const char* target, MHD_Connection* connection) {
  static_cast<WebServer*>(server)->connections().onRequest(connection);
  return new WebRequest(connection, target);
}

void onRequestEnd(void* server, MHD_Connection* connection, void** state, MHD_RequestTerminationCode) {
  static_cast<WebServer*>(server)->connections().onAnswered(connection);
  delete static_cast<WebRequest*>(*state);
  *state = nullptr;
}

void onConnection(void* server, MHD_Connection* connection, void** /*state*/,
                  MHD_ConnectionNotificationCode code) {
  ConnectionTable& connections = static_cast<WebServer*>(server)->connections();
  if (code == MHD_CONNECTION_NOTIFY_CLOSED) {
    connections.onClosed(connection);
    return;
  }
  const auto* socket = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
  const auto* client = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
  if (socket && client && client->client_addr->sa_family == AF_INET)
    connections.onConnected(connection, socket->connect_fd,
                            reinterpret_cast<const sockaddr_in*>(client->client_addr)->sin_addr);
}

__attribute__((format(printf, 2, 0))) void onServerLog(void* /*server*/, const char* format,
                                                       va_list arguments) {
  char line[512];
  std::vsnprintf(line, sizeof line, format, arguments);
  qCDebug(lcWeb, "web server says : %s", QByteArray(line).trimmed().constData());
}

void closeAll(const std::vector<int>& sockets) {
  for (const int socket : sockets)
    ::close(socket);
}

/// Sockets that listen on the port on all addresses; without sockets `error` is a negative errno.
std::vector<int> listenOnAll(int port, int& error) {
  std::vector<int> sockets;
  for (const QString& address : listenAddresses()) {
    const int socket = openListener(address, port);
    if (socket >= 0) {
      sockets.push_back(socket);
      continue;
    }
    error = socket;
    closeAll(sockets);
    return {};
  }
  return sockets;
}

}  // namespace

WebServer::~WebServer() {
  WebServer::close();
}

bool WebServer::release() {
  if (isValid())
    delete this;
  return true;
}

void* WebServer::queryInterface(const Identifier* id, unsigned version) {
  if (isRequestFor(kIKorviaWebServerId, id, version) || (id && *id == kIUnknownExId))
    return static_cast<IKorviaWebServer*>(this);
  return nullptr;
}

int WebServer::open(IKorviaWebServerSink* /*sink*/, int* httpPort) {
  if (!daemons_.empty() || !httpPort)
    return -EINVAL;
  const bool usable = *httpPort >= 1 && *httpPort <= 65535;
  const int wanted = usable ? *httpPort : kDefaultPort;
  int error = -EADDRINUSE;
  std::vector<int> sockets;
  for (int tries = 0; tries < kPortTries && sockets.empty() && error == -EADDRINUSE; ++tries)
    sockets = listenOnAll(wanted + tries, error);
  if (sockets.empty()) {
    qCWarning(lcWeb, "failed to listen from port %d on : %s", wanted, std::strerror(-error));
    return error;
  }
  const int port = LoopbackPort::portOf(sockets.front());
  if (!startDaemons(sockets)) {
    qCWarning(lcWeb, "failed to start web server on port %d", port);
    return -EIO;
  }
  if (port != wanted)
    qCWarning(lcWeb, "port %d is in use, web server takes %d", wanted, port);
  qCInfo(lcWeb, "web server : http://127.0.0.1:%d/", port);
  *httpPort = port;
  WebDesk::instance().setPort(port);
  return 0;
}

bool WebServer::startDaemons(const std::vector<int>& sockets) {
  connections_ = std::make_unique<ConnectionTable>([this] { onTick(); });
  router_ = std::make_unique<RequestRouter>(listensToOthers() ? WebReach::Network : WebReach::Loopback,
                                            *connections_);
  router_->serveSegments(segmentPath_, segmentFolder_);
  WebDesk& desk = WebDesk::instance();
  desk.events().open();
  desk.program().open();
  desk.channels().open();
  for (std::size_t index = 0; index < sockets.size(); ++index) {
    MHD_Daemon* daemon = MHD_start_daemon(
        MHD_USE_POLL_INTERNAL_THREAD | MHD_ALLOW_SUSPEND_RESUME | MHD_USE_ERROR_LOG, 0, nullptr, nullptr,
        onRequest, this, MHD_OPTION_EXTERNAL_LOGGER, onServerLog, nullptr, MHD_OPTION_LISTEN_SOCKET,
        sockets[index], MHD_OPTION_CONNECTION_LIMIT, kConnectionLimit, MHD_OPTION_CONNECTION_TIMEOUT,
        kIdleLimitS, MHD_OPTION_CONNECTION_MEMORY_LIMIT, kConnectionMemoryBytes, MHD_OPTION_URI_LOG_CALLBACK,
        onRequestLine, this, MHD_OPTION_NOTIFY_COMPLETED, onRequestEnd, this, MHD_OPTION_NOTIFY_CONNECTION,
        onConnection, this, MHD_OPTION_END);
    if (!daemon) {
      closeAll({sockets.begin() + static_cast<std::ptrdiff_t>(index), sockets.end()});
      close();
      return false;
    }
    daemons_.push_back(daemon);
  }
  return true;
}

void WebServer::close() {
  WebDesk& desk = WebDesk::instance();
  if (connections_) {
    desk.setPort(0);
    // No request may sleep when its daemon is stopped.
    desk.events().close();
    desk.program().close();
    desk.channels().close();
    for (int tries = 0; tries < kGoodbyeTries && desk.events().hasViewers(); ++tries)
      std::this_thread::sleep_for(kGoodbyePause);
  }
  for (MHD_Daemon* daemon : daemons_)
    MHD_stop_daemon(daemon);
  daemons_.clear();
  router_.reset();
  connections_.reset();
}

void WebServer::serveSegments(const QString& path, const QString& folder) {
  segmentPath_ = path;
  segmentFolder_ = folder;
  if (router_)
    router_->serveSegments(path, folder);
}

void WebServer::onTick() {
  WebDesk& desk = WebDesk::instance();
  // Requests that have waited for long enough are answered without a picture.
  desk.program().wakeAll();
  desk.channels().wakeAll();
  if (++ticks_ % kTicksPerBeat == 0)
    desk.events().beat();
}

}  // namespace korvia

extern "C" Q_DECL_EXPORT void* CreateKorviaWebServer(const Identifier* id, unsigned version) {
  auto* server = new korvia::WebServer;
  void* interface = server->queryInterface(id, version);
  if (!interface)
    delete server;
  return interface;
}

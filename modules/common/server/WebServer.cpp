#include "WebServer.h"

#include <fcntl.h>
#include <microhttpd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "LoopbackPort.h"
#include "StatusBoard.h"

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(lcWeb, "korvia.web", QtInfoMsg)

constexpr int kDefaultPort = 8800;
constexpr int kPortTries = 100;
constexpr std::size_t kConnectionsKept = 64;
// Additional connections that were shut down but are not cleaned up yet.
constexpr unsigned kConnectionLimit = 4 * kConnectionsKept;
constexpr unsigned kConnectionTimeoutS = 10;
constexpr std::size_t kConnectionMemoryBytes = 32 * 1024;

constexpr char kPlainPolicy[] = "default-src 'none'; frame-ancestors 'none'";

struct Answer {
  unsigned status = MHD_HTTP_OK;
  const char* contentType = "text/plain; charset=utf-8";
  QByteArray body;
  QByteArray policy = kPlainPolicy;
  const char* allow = nullptr;
};

/// The content security policy source that allows exactly the inline element of that name in the page.
QByteArray hashSource(const QByteArray& page, const QByteArray& element) {
  const int begin = page.indexOf("<" + element + ">") + element.size() + 2;
  const int end = page.indexOf("</" + element + ">", begin);
  const QByteArray text = page.mid(begin, end - begin);
  return "'sha256-" + QCryptographicHash::hash(text, QCryptographicHash::Sha256).toBase64() + "'";
}

/// Protects against DNS rebinding: a page of another site must not read the state by resolving its own name
/// to 127.0.0.1.
bool isLocalHostHeader(const char* header) {
  if (!header)
    return true;  // HTTP/1.0; browsers always send one
  QByteArray host(header);
  const int colon = host.lastIndexOf(':');
  if (colon >= 0)
    host.truncate(colon);
  return host == "127.0.0.1" || qstricmp(host.constData(), "localhost") == 0;
}

void addSafetyHeaders(MHD_Response* response) {
  MHD_add_response_header(response, "X-Content-Type-Options", "nosniff");
  MHD_add_response_header(response, "Referrer-Policy", "no-referrer");
}

/// Takes over the file, which is a playlist or a segment by the end of its path.
int sendSegment(MHD_Connection* connection, int file, const QString& path) {
  struct stat state = {};
  ::fstat(file, &state);
  const bool isList = path.endsWith(QLatin1String(".m3u8"));
  MHD_Response* response = MHD_create_response_from_fd64(static_cast<std::uint64_t>(state.st_size), file);
  if (!response) {
    ::close(file);
    return MHD_NO;
  }
  MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE,
                          isList ? "application/vnd.apple.mpegurl" : "video/mp2t");
  MHD_add_response_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, isList ? "no-cache" : "max-age=60");
  MHD_add_response_header(response, "Content-Security-Policy", kPlainPolicy);
  addSafetyHeaders(response);
  const int result = MHD_queue_response(connection, MHD_HTTP_OK, response);
  MHD_destroy_response(response);
  return result;
}

int send(MHD_Connection* connection, const Answer& answer) {
  // MHD copies the body, and omits it for HEAD on its own.
  MHD_Response* response =
      MHD_create_response_from_buffer(static_cast<std::size_t>(answer.body.size()),
                                      const_cast<char*>(answer.body.constData()), MHD_RESPMEM_MUST_COPY);
  if (!response)
    return MHD_NO;
  MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, answer.contentType);
  MHD_add_response_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
  addSafetyHeaders(response);
  MHD_add_response_header(response, "Content-Security-Policy", answer.policy.constData());
  if (answer.allow)
    MHD_add_response_header(response, MHD_HTTP_HEADER_ALLOW, answer.allow);
  const int result = MHD_queue_response(connection, answer.status, response);
  MHD_destroy_response(response);
  return result;
}

MHD_Result onRequest(void* server, MHD_Connection* connection, const char* url, const char* method,
                     const char* /*version*/, const char* /*upload*/, std::size_t* /*uploadSize*/,
                     void** /*state*/) {
  return static_cast<MHD_Result>(static_cast<WebServer*>(server)->answer(connection, url, method));
}

void onConnection(void* server, MHD_Connection* connection, void** /*state*/,
                  MHD_ConnectionNotificationCode code) {
  if (code == MHD_CONNECTION_NOTIFY_STARTED)
    static_cast<WebServer*>(server)->onConnectionStarted(connection);
  else
    static_cast<WebServer*>(server)->onConnectionClosed(connection);
}

__attribute__((format(printf, 2, 0))) void onServerLog(void* /*server*/, const char* format,
                                                       va_list arguments) {
  char line[512];
  std::vsnprintf(line, sizeof line, format, arguments);
  qCDebug(lcWeb, "web server says : %s", QByteArray(line).trimmed().constData());
}

/// A listening socket at the first free port from the wanted one on, or a negative errno.
int listenFrom(int port) {
  int socket = -EADDRINUSE;
  for (int tries = 0; tries < kPortTries && socket == -EADDRINUSE; ++tries)
    socket = LoopbackPort::listenOn(port + tries);
  return socket;
}

}  // namespace

WebServer::WebServer() {
  QFile file(QStringLiteral(":/korvia/web/status.html"));
  if (file.open(QIODevice::ReadOnly))
    page_ = file.readAll();
  pagePolicy_ = "default-src 'none'; script-src " + hashSource(page_, "script") + "; style-src " +
                hashSource(page_, "style") +
                "; connect-src 'self'; img-src data:; base-uri 'none'; form-action 'none'; "
                "frame-ancestors 'none'";
}

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
  if (daemon_ || !httpPort)
    return -EINVAL;
  const bool usable = *httpPort >= 1 && *httpPort <= 65535;
  const int wanted = usable ? *httpPort : kDefaultPort;
  const int socket = listenFrom(wanted);
  if (socket < 0) {
    qCWarning(lcWeb, "failed to listen on loopback from port %d on : %s", wanted, std::strerror(-socket));
    return socket;
  }
  const int port = LoopbackPort::portOf(socket);
  uptime_.start();
  daemon_ =
      MHD_start_daemon(MHD_USE_AUTO_INTERNAL_THREAD | MHD_USE_ERROR_LOG, 0, nullptr, nullptr, onRequest, this,
                       MHD_OPTION_EXTERNAL_LOGGER, onServerLog, nullptr, MHD_OPTION_LISTEN_SOCKET, socket,
                       MHD_OPTION_CONNECTION_LIMIT, kConnectionLimit, MHD_OPTION_CONNECTION_TIMEOUT,
                       kConnectionTimeoutS, MHD_OPTION_CONNECTION_MEMORY_LIMIT, kConnectionMemoryBytes,
                       MHD_OPTION_NOTIFY_CONNECTION, onConnection, this, MHD_OPTION_END);
  if (!daemon_) {
    ::close(socket);
    qCWarning(lcWeb, "failed to start web server on port %d", port);
    return -EIO;
  }
  if (port != wanted)
    qCWarning(lcWeb, "port %d is in use, web server takes %d", wanted, port);
  qCInfo(lcWeb, "web server : http://127.0.0.1:%d/", port);
  *httpPort = port;
  return 0;
}

void WebServer::close() {
  if (daemon_)
    MHD_stop_daemon(daemon_);
  daemon_ = nullptr;
}

void WebServer::serveSegments(const QString& path, const QString& folder) {
  MutexLock lock(mutex_);
  segments_ = {QDir::cleanPath(QLatin1Char('/') + path.trimmed()), folder};
}

int WebServer::openSegment(const QString& path) const {
  QString fileName;
  {
    MutexLock lock(mutex_);
    const QString prefix =
        segments_.path.endsWith(QLatin1Char('/')) ? segments_.path : segments_.path + QLatin1Char('/');
    if (segments_.folder.isEmpty() || !path.startsWith(prefix))
      return -1;
    // Nothing but the names that the stream gives its files, so that no path leads out of the folder.
    static const QRegularExpression served(QStringLiteral("^[A-Za-z0-9_-]+\\.(m3u8|ts)$"));
    const QString name = path.mid(prefix.size());
    if (!served.match(name).hasMatch())
      return -1;
    fileName = QDir(segments_.folder).filePath(name);
  }
  // The path may be a link or a pipe that somebody put there.
  const int file =
      ::open(QFile::encodeName(fileName).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  struct stat state = {};
  if (file >= 0 && (::fstat(file, &state) != 0 || !S_ISREG(state.st_mode))) {
    ::close(file);
    return -1;
  }
  return file;
}

QByteArray WebServer::statusJson() const {
  const QJsonObject status{{QStringLiteral("uptimeSeconds"), uptime_.elapsed() / 1000},
                           {QStringLiteral("sections"), StatusBoard::instance().snapshot()}};
  return QJsonDocument(status).toJson(QJsonDocument::Compact);
}

void WebServer::onConnectionStarted(MHD_Connection* connection) {
  connections_.push_back(connection);
  if (connections_.size() <= kConnectionsKept)
    return;
  // After the shutdown MHD reads the end of the connection and closes it as if the client had left.
  if (const auto* info = MHD_get_connection_info(connections_.front(), MHD_CONNECTION_INFO_CONNECTION_FD))
    ::shutdown(info->connect_fd, SHUT_RDWR);
  connections_.pop_front();
}

void WebServer::onConnectionClosed(MHD_Connection* connection) {
  connections_.remove(connection);
}

int WebServer::answer(MHD_Connection* connection, const char* url, const char* method) {
  Answer answer;
  const bool isPage = std::strcmp(url, "/") == 0;
  const bool isStatus = std::strcmp(url, "/status.json") == 0;
  const bool isRead =
      std::strcmp(method, MHD_HTTP_METHOD_GET) == 0 || std::strcmp(method, MHD_HTTP_METHOD_HEAD) == 0;
  if (!isLocalHostHeader(MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_HOST))) {
    answer.status = MHD_HTTP_FORBIDDEN;
    answer.body = "forbidden\n";
  } else if (!isPage && !isStatus) {
    const QString path = QString::fromUtf8(url);
    const int segment = isRead ? openSegment(path) : -1;
    if (segment >= 0)
      return sendSegment(connection, segment, path);
    answer.status = MHD_HTTP_NOT_FOUND;
    answer.body = "not found\n";
  } else if (!isRead) {
    answer.status = MHD_HTTP_METHOD_NOT_ALLOWED;
    answer.allow = "GET, HEAD";
    answer.body = "method not allowed\n";
  } else if (isPage) {
    answer.contentType = "text/html; charset=utf-8";
    answer.policy = pagePolicy_;
    answer.body = page_;
  } else {
    answer.contentType = "application/json";
    answer.body = statusJson();
  }
  return send(connection, answer);
}

}  // namespace korvia

extern "C" Q_DECL_EXPORT void* CreateKorviaWebServer(const Identifier* id, unsigned version) {
  auto* server = new korvia::WebServer;
  void* interface = server->queryInterface(id, version);
  if (!interface)
    delete server;
  return interface;
}

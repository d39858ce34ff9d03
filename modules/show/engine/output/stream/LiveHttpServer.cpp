#include "LiveHttpServer.h"

#include <microhttpd.h>
#include <unistd.h>

#include <QDir>
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "ListenPlace.h"

namespace korvia {

namespace {

constexpr unsigned kConnectionLimit = 256;
// A viewer that takes nothing for so long is gone.
constexpr unsigned kConnectionTimeoutS = 10;
constexpr std::size_t kConnectionMemoryBytes = 64 * 1024;
constexpr std::size_t kBlockBytes = 32 * 1024;

/// One viewer of a live stream. Server thread, except sleep() and wake().
class Viewer final : public LiveReader {
 public:
  Viewer(MHD_Connection* connection, std::shared_ptr<LiveFeed> feed)
      : connection_(connection), feed_(std::move(feed)) {}
  ~Viewer() { feed_->forget(*this); }
  Viewer(const Viewer&) = delete;
  Viewer& operator=(const Viewer&) = delete;

  void sleep() override { MHD_suspend_connection(connection_); }
  void wake() override { MHD_resume_connection(connection_); }

  ssize_t read(char* buffer, std::size_t room) {
    if (taken_ == chunk_.size()) {
      taken_ = 0;
      chunk_.clear();
      const LiveFeed::Next next = feed_->next(place_, chunk_, *this);
      if (next == LiveFeed::Next::End)
        return MHD_CONTENT_READER_END_OF_STREAM;
    }
    const int count = std::min(static_cast<int>(room), chunk_.size() - taken_);
    std::memcpy(buffer, chunk_.constData() + taken_, static_cast<std::size_t>(count));
    taken_ += count;
    return count;
  }

 private:
  MHD_Connection* const connection_;
  const std::shared_ptr<LiveFeed> feed_;
  LiveFeed::Place place_;
  QByteArray chunk_;  // shared with the feed and all viewers
  int taken_ = 0;     // bytes of the chunk
};

ssize_t onRead(void* viewer, std::uint64_t, char* buffer, std::size_t room) {
  return static_cast<Viewer*>(viewer)->read(buffer, room);
}

void onViewerEnd(void* viewer) {
  delete static_cast<Viewer*>(viewer);
}

MHD_Result onRequest(void* server, MHD_Connection* connection, const char* url, const char* method,
                     const char* /*version*/, const char* /*upload*/, std::size_t* /*uploadSize*/,
                     void** /*state*/) {
  return static_cast<MHD_Result>(
      static_cast<LiveHttpServer*>(server)->answer(connection, QString::fromUtf8(url), method));
}

int sendText(MHD_Connection* connection, unsigned status, const char* text) {
  MHD_Response* response =
      MHD_create_response_from_buffer(std::strlen(text), const_cast<char*>(text), MHD_RESPMEM_PERSISTENT);
  MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, "text/plain; charset=utf-8");
  if (status == MHD_HTTP_METHOD_NOT_ALLOWED)
    MHD_add_response_header(response, MHD_HTTP_HEADER_ALLOW, "GET, HEAD");
  const int result = MHD_queue_response(connection, status, response);
  MHD_destroy_response(response);
  return result;
}

int sendLive(MHD_Connection* connection, const LiveHttpServer::Content& content, bool isHead) {
  // HEAD gets no body, and no viewer.
  MHD_Response* response =
      isHead ? MHD_create_response_from_buffer(0, nullptr, MHD_RESPMEM_PERSISTENT)
             : MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, kBlockBytes, onRead,
                                                 new Viewer(connection, content.feed), onViewerEnd);
  MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, content.contentType);
  MHD_add_response_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
  const int result = MHD_queue_response(connection, MHD_HTTP_OK, response);
  MHD_destroy_response(response);
  return result;
}

/// The servers that listen.
struct Servers {
  Mutex mutex;
  std::map<int, std::weak_ptr<LiveHttpServer>> byPort GUARDED_BY(mutex);
};

Servers& servers() {
  static Servers all;
  return all;
}

}  // namespace

std::shared_ptr<LiveHttpServer> LiveHttpServer::at(int port, QString* reason) {
  Servers& all = servers();
  MutexLock lock(all.mutex);
  if (std::shared_ptr<LiveHttpServer> server = all.byPort[port].lock())
    return server;
  std::shared_ptr<LiveHttpServer> server(new LiveHttpServer);
  for (const QString& address : listenAddresses()) {
    if (!server->listen(address, port, reason))
      return nullptr;
  }
  all.byPort[port] = server;
  return server;
}

LiveHttpServer::~LiveHttpServer() {
  {
    // A sleeping connection would keep the daemon from its end.
    MutexLock lock(mutex_);
    for (const auto& [path, content] : contents_)
      content.feed->close();
  }
  for (MHD_Daemon* daemon : daemons_)
    MHD_stop_daemon(daemon);
}

bool LiveHttpServer::listen(const QString& address, int port, QString* reason) {
  const int socket = openListener(address, port);
  if (socket < 0) {
    *reason = socket == -EADDRINUSE ? QStringLiteral("the port is in use")
                                    : QStringLiteral("the port cannot be listened on");
    return false;
  }
  MHD_Daemon* daemon =
      MHD_start_daemon(MHD_USE_POLL_INTERNAL_THREAD | MHD_ALLOW_SUSPEND_RESUME, 0, nullptr, nullptr,
                       onRequest, this, MHD_OPTION_LISTEN_SOCKET, socket, MHD_OPTION_CONNECTION_LIMIT,
                       kConnectionLimit, MHD_OPTION_CONNECTION_TIMEOUT, kConnectionTimeoutS,
                       MHD_OPTION_CONNECTION_MEMORY_LIMIT, kConnectionMemoryBytes, MHD_OPTION_END);
  if (daemon) {
    daemons_.push_back(daemon);
    return true;
  }
  ::close(socket);
  *reason = QStringLiteral("the server does not start");
  return false;
}

bool LiveHttpServer::add(const QString& path, const Content& content) {
  MutexLock lock(mutex_);
  return contents_.emplace(cleanPath(path), content).second;
}

void LiveHttpServer::remove(const QString& path) {
  MutexLock lock(mutex_);
  const auto place = contents_.find(cleanPath(path));
  if (place == contents_.end())
    return;
  place->second.feed->close();
  contents_.erase(place);
}

QString LiveHttpServer::cleanPath(const QString& path) {
  return QDir::cleanPath(QLatin1Char('/') + path.trimmed());
}

LiveHttpServer::Content LiveHttpServer::find(const QString& path) const {
  MutexLock lock(mutex_);
  const auto place = contents_.find(path);
  return place == contents_.end() ? Content() : place->second;
}

int LiveHttpServer::answer(MHD_Connection* connection, const QString& path, const char* method) const {
  const bool isHead = std::strcmp(method, MHD_HTTP_METHOD_HEAD) == 0;
  if (!isHead && std::strcmp(method, MHD_HTTP_METHOD_GET) != 0)
    return sendText(connection, MHD_HTTP_METHOD_NOT_ALLOWED, "method not allowed\n");
  const Content content = find(path);
  if (content.feed)
    return sendLive(connection, content, isHead);
  return sendText(connection, MHD_HTTP_NOT_FOUND, "not found\n");
}

}  // namespace korvia

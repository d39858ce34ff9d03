#include "RequestRouter.h"

#include <fcntl.h>
#include <microhttpd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <algorithm>
#include <cstring>

#include "LogTail.h"
#include "Metrics.h"
#include "StatusBoard.h"
#include "WebDesk.h"
#include "WebRequest.h"

namespace korvia {

namespace {

constexpr std::chrono::seconds kPictureWait{2};
constexpr std::size_t kBodyLimit = 1024;
constexpr std::size_t kEventBlockBytes = 16 * 1024;

// The page's own files, and nothing from anywhere else.
constexpr char kPolicy[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; connect-src "
    "'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

constexpr struct {
  const char* path;
  const char* file;
  const char* contentType;
} kAssets[] = {
    {"/", ":/korvia/web/page.html", "text/html; charset=utf-8"},
    {"/page.css", ":/korvia/web/page.css", "text/css; charset=utf-8"},
    {"/page.js", ":/korvia/web/page.js", "text/javascript; charset=utf-8"},
    {"/basics.js", ":/korvia/web/basics.js", "text/javascript; charset=utf-8"},
    {"/commands.js", ":/korvia/web/commands.js", "text/javascript; charset=utf-8"},
    {"/desk.js", ":/korvia/web/desk.js", "text/javascript; charset=utf-8"},
    {"/figures.js", ":/korvia/web/figures.js", "text/javascript; charset=utf-8"},
    {"/icon.svg", ":/korvia/web/icon.svg", "image/svg+xml"},
};

constexpr const char* kHeaders[][2] = {
    {"Content-Security-Policy", kPolicy},
    {"X-Content-Type-Options", "nosniff"},
    {"X-Frame-Options", "DENY"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Permissions-Policy", "camera=(), microphone=(), geolocation=()"},
};

struct Header {
  const char* name;
  QByteArray value;
};

/// Sends the response and gives it up.
int queue(const WebRequest& request, unsigned status, MHD_Response* response, const char* contentType,
          const char* caching = "no-store") {
  if (!response)
    return MHD_NO;
  MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, contentType);
  MHD_add_response_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, caching);
  for (const auto& [name, value] : kHeaders)
    MHD_add_response_header(response, name, value);
  const int result = MHD_queue_response(request.connection(), status, response);
  MHD_destroy_response(response);
  return result;
}

int send(const WebRequest& request, unsigned status, const QByteArray& body, const char* contentType,
         const Header& header = {}) {
  // MHD copies the body, and omits it for HEAD on its own.
  MHD_Response* response = MHD_create_response_from_buffer(
      static_cast<std::size_t>(body.size()), const_cast<char*>(body.constData()), MHD_RESPMEM_MUST_COPY);
  if (response && header.name)
    MHD_add_response_header(response, header.name, header.value.constData());
  return queue(request, status, response, contentType);
}

int refuse(const WebRequest& request, unsigned status, const char* reason, const Header& header = {}) {
  return send(request, status, QByteArray(reason) + '\n', "text/plain; charset=utf-8", header);
}

/// A viewer of "/events".
class EventViewer final : public WebSleeper {
 public:
  EventViewer(MHD_Connection* connection, EventFeed::Levels levels) : connection_(connection) {
    place_.levels = levels;
    feed_.join(levels);
  }
  ~EventViewer() { feed_.leave(place_.levels, *this); }
  EventViewer(const EventViewer&) = delete;
  EventViewer& operator=(const EventViewer&) = delete;

  void sleep() override { MHD_suspend_connection(connection_); }
  void wake() override { MHD_resume_connection(connection_); }

  ssize_t read(char* buffer, std::size_t room) {
    if (taken_ == text_.size()) {
      taken_ = 0;
      text_.clear();
      if (feed_.next(place_, text_, *this) == EventFeed::Next::End)
        return MHD_CONTENT_READER_END_OF_STREAM;
    }
    const int count = std::min(static_cast<int>(room), text_.size() - taken_);
    std::memcpy(buffer, text_.constData() + taken_, static_cast<std::size_t>(count));
    taken_ += count;
    return count;
  }

 private:
  MHD_Connection* const connection_;
  EventFeed& feed_ = WebDesk::instance().events();
  EventFeed::Place place_;
  QByteArray text_;
  int taken_ = 0;
};

ssize_t onRead(void* viewer, std::uint64_t, char* buffer, std::size_t room) {
  return static_cast<EventViewer*>(viewer)->read(buffer, room);
}

void onViewerEnd(void* viewer) {
  delete static_cast<EventViewer*>(viewer);
}

}  // namespace

RequestRouter::RequestRouter(WebReach reach, ConnectionTable& connections)
    : reach_(reach), connections_(connections) {
  uptime_.start();
  for (const auto& [path, name, contentType] : kAssets) {
    QFile file{QLatin1String(name)};
    if (file.open(QIODevice::ReadOnly))
      assets_[path] = {file.readAll(), contentType};
  }
}

void RequestRouter::serveSegments(const QString& path, const QString& folder) {
  const MutexLock lock(mutex_);
  segments_ = {QDir::cleanPath(QLatin1Char('/') + path.trimmed()), folder};
}

int RequestRouter::answer(WebRequest& request, const char* url, const char* method, std::size_t* uploadSize) {
  const QByteArray path(url);
  const bool isHead = std::strcmp(method, MHD_HTTP_METHOD_HEAD) == 0;
  const bool isRead = isHead || std::strcmp(method, MHD_HTTP_METHOD_GET) == 0;
  if (request.hasNul)
    return refuse(request, MHD_HTTP_BAD_REQUEST, "bad request");
  if (!request.isHeadRead) {
    request.isHeadRequest = isHead;
    const char* host = request.header(MHD_HTTP_HEADER_HOST);
    if (!isOwnHost(host, reach_) || !isOwnOrigin(request.header(MHD_HTTP_HEADER_ORIGIN), host))
      return refuse(request, MHD_HTTP_FORBIDDEN, "forbidden");
  }
  if (isRead) {
    // An answer before the end of the request would close the connection.
    if (!request.isHeadRead) {
      request.isHeadRead = true;
      return MHD_YES;
    }
    if (*uploadSize == 0)
      return read(request, path);
    const bool fits = request.takeBody(*uploadSize, kBodyLimit);
    *uploadSize = 0;
    return fits ? MHD_YES : MHD_NO;
  }
  if (WebCommand::parse(QString::fromUtf8(path)))
    return std::strcmp(method, MHD_HTTP_METHOD_POST) == 0
               ? post(request, path, uploadSize)
               : refuse(request, MHD_HTTP_METHOD_NOT_ALLOWED, "method not allowed",
                        {MHD_HTTP_HEADER_ALLOW, "POST"});
  if (pageOf(path) || assets_.count(path) != 0)
    return refuse(request, MHD_HTTP_METHOD_NOT_ALLOWED, "method not allowed",
                  {MHD_HTTP_HEADER_ALLOW, "GET, HEAD"});
  return refuse(request, MHD_HTTP_NOT_FOUND, "not found");
}

RequestRouter::Answer RequestRouter::pageOf(const QByteArray& path) {
  static const std::map<QByteArray, Answer> pages{
      {"/status.json", &RequestRouter::sendStatus},  {"/metrics", &RequestRouter::sendMetrics},
      {"/log.txt", &RequestRouter::sendLog},         {"/events", &RequestRouter::sendEvents},
      {"/program.jpg", &RequestRouter::sendProgram}, {"/channels.jpg", &RequestRouter::sendChannels},
  };
  const auto page = pages.find(path);
  return page == pages.end() ? nullptr : page->second;
}

int RequestRouter::read(WebRequest& request, const QByteArray& path) {
  if (const Answer page = pageOf(path))
    return (this->*page)(request);
  const auto asset = assets_.find(path);
  if (asset != assets_.end())
    return send(request, MHD_HTTP_OK, asset->second.body, asset->second.contentType);
  const QString name = QString::fromUtf8(path);
  if (WebCommand::parse(name))
    return refuse(request, MHD_HTTP_METHOD_NOT_ALLOWED, "method not allowed",
                  {MHD_HTTP_HEADER_ALLOW, "POST"});
  const int file = openSegment(name);
  if (file < 0)
    return refuse(request, MHD_HTTP_NOT_FOUND, "not found");
  struct stat state = {};
  ::fstat(file, &state);
  const bool isList = path.endsWith(".m3u8");
  MHD_Response* response = MHD_create_response_from_fd64(static_cast<std::uint64_t>(state.st_size), file);
  if (!response)
    ::close(file);
  return queue(request, MHD_HTTP_OK, response, isList ? "application/vnd.apple.mpegurl" : "video/mp2t",
               isList ? "no-cache" : "max-age=60");
}

int RequestRouter::post(WebRequest& request, const QByteArray& path, std::size_t* uploadSize) {
  if (!request.isHeadRead) {
    request.isHeadRead = true;
    if (!isOwnSite(request.header("Sec-Fetch-Site")))
      return refuse(request, MHD_HTTP_FORBIDDEN, "forbidden");
    if (!hasToken(request.header(MHD_HTTP_HEADER_AUTHORIZATION), WebDesk::instance().token().toLatin1()))
      return refuse(request, MHD_HTTP_UNAUTHORIZED, "the token is missing or wrong",
                    {MHD_HTTP_HEADER_WWW_AUTHENTICATE, "Bearer realm=\"korvia\""});
    const char* length = request.header(MHD_HTTP_HEADER_CONTENT_LENGTH);
    if (length && QByteArray(length).toULongLong() > kBodyLimit)
      return refuse(request, MHD_HTTP_CONTENT_TOO_LARGE, "too large");
    request.command = WebCommand::parse(QString::fromUtf8(path));
    return MHD_YES;  // the body follows, which is ignored
  }
  if (*uploadSize > 0) {
    const bool fits = request.takeBody(*uploadSize, kBodyLimit);
    *uploadSize = 0;
    return fits ? MHD_YES : MHD_NO;
  }
  switch (request.command ? WebDesk::instance().run(*request.command) : WebVerdict::NotReady) {
    case WebVerdict::Accepted:
      return send(request, MHD_HTTP_ACCEPTED, "{\"accepted\":true}", "application/json");
    case WebVerdict::UnknownChannel:
      return refuse(request, MHD_HTTP_NOT_FOUND, "there is no such channel");
    case WebVerdict::NotReady:
      break;
  }
  return refuse(request, MHD_HTTP_SERVICE_UNAVAILABLE, "the console is not ready");
}

QJsonObject RequestRouter::status() const {
  const QJsonObject web{{QStringLiteral("connections"), connections_.open()},
                        {QStringLiteral("eventViewers"), WebDesk::instance().events().viewers()},
                        {QStringLiteral("refusedConnections"), connections_.refused()},
                        {QStringLiteral("expiredConnections"), connections_.expired()}};
  QJsonObject sections = StatusBoard::instance().snapshot();
  sections.insert(QStringLiteral("webServer"), web);
  return {{QStringLiteral("uptimeSeconds"), uptime_.elapsed() / 1000},
          {QStringLiteral("sections"), sections}};
}

int RequestRouter::sendStatus(WebRequest& request) {
  return send(request, MHD_HTTP_OK, QJsonDocument(status()).toJson(QJsonDocument::Compact),
              "application/json");
}

int RequestRouter::sendMetrics(WebRequest& request) {
  return send(request, MHD_HTTP_OK, metricsText(status()), "text/plain; version=0.0.4; charset=utf-8");
}

int RequestRouter::sendLog(WebRequest& request) {
  return send(request, MHD_HTTP_OK, LogTail::instance().text(), "text/plain; charset=utf-8");
}

int RequestRouter::sendEvents(WebRequest& request) {
  if (request.isHeadRequest)
    return send(request, MHD_HTTP_OK, {}, "text/event-stream");
  const char* levels = request.argument("levels");
  auto* viewer = new EventViewer(request.connection(), levels && std::strcmp(levels, "1") == 0
                                                           ? EventFeed::Levels::With
                                                           : EventFeed::Levels::Without);
  MHD_Response* response =
      MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, kEventBlockBytes, onRead, viewer, onViewerEnd);
  if (!response)
    delete viewer;
  connections_.onStream(request.connection());
  return queue(request, MHD_HTTP_OK, response, "text/event-stream");
}

int RequestRouter::sendProgram(WebRequest& request) {
  return sendPicture(request, WebDesk::instance().program());
}

int RequestRouter::sendChannels(WebRequest& request) {
  return sendPicture(request, WebDesk::instance().channels());
}

int RequestRouter::sendPicture(WebRequest& request, PictureBoard& board) {
  const char* after = request.argument("after");
  const bool mayWait = !request.isHeadRequest && request.age() < kPictureWait;
  request.waitAt(board);
  PictureBoard::Picture picture;
  switch (board.next(after ? QByteArray(after).toLongLong() : 0,
                     mayWait ? PictureBoard::Wait::Allowed : PictureBoard::Wait::Over, request, picture)) {
    case PictureBoard::Next::Picture:
      return send(request, MHD_HTTP_OK, picture.jpeg, "image/jpeg",
                  {"X-Korvia-Picture", QByteArray::number(picture.number)});
    case PictureBoard::Next::Asleep:
      return MHD_YES;
    case PictureBoard::Next::None:
      break;
  }
  if (board.isFresh())
    return send(request, MHD_HTTP_NOT_MODIFIED, {}, "image/jpeg");
  return refuse(request, MHD_HTTP_SERVICE_UNAVAILABLE, "there is no picture");
}

int RequestRouter::openSegment(const QString& path) const {
  QString fileName;
  {
    const MutexLock lock(mutex_);
    const QString prefix =
        segments_.path.endsWith(QLatin1Char('/')) ? segments_.path : segments_.path + QLatin1Char('/');
    if (segments_.folder.isEmpty() || !path.startsWith(prefix))
      return -1;
    // Nothing but the names that the stream gives its files, so that no path leads out of the folder.
    static const QRegularExpression served(QStringLiteral("\\A[A-Za-z0-9_-]+\\.(m3u8|ts)\\z"));
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

}  // namespace korvia

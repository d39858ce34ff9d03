#include "PublishGate.h"

#include <microhttpd.h>
#include <unistd.h>

#include <QLoggingCategory>
#include <QScopeGuard>
#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

#include "FolderSocket.h"
#include "NginxConfig.h"
#include "PublishRules.h"
#include "printable.h"
#include "server/secretEquals.h"

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(lcIncome, "korvia.income", QtInfoMsg)

using std::chrono::milliseconds;

constexpr unsigned kConnectionLimit = 64;
constexpr unsigned kConnectionTimeoutS = 5;
// nginx takes 256 bytes of each text of a client, which grow threefold when it encodes them.
constexpr int kMaxFormBytes = 8 * 1024;
constexpr milliseconds kAnswerLimit{500};
/// A publisher that sends nothing for so long has lost its network when another one takes its place.
constexpr milliseconds kSilence{1000};
/// A new publisher may take so long until it sends its first packet.
constexpr qint64 kFirstPacketMs = 3000;
constexpr milliseconds kDropLimit{500};
constexpr milliseconds kLookPause{100};
constexpr qint64 kLogPauseMs = 1000;
constexpr int kLogBurst = 5;

int reply(MHD_Connection* connection, unsigned status) {
  MHD_Response* response = MHD_create_response_from_buffer(0, nullptr, MHD_RESPMEM_PERSISTENT);
  const int result = MHD_queue_response(connection, status, response);
  MHD_destroy_response(response);
  return result;
}

/// Called with the head of a request, with each part of its body, and at its end.
int onRequest(void* gate, MHD_Connection* connection, const char* url, const char* method,
              const char* /*version*/, const char* upload, std::size_t* uploadSize, void** state) {
  if (!*state) {
    *state = new QByteArray;
    const bool isQuestion =
        std::strcmp(url, "/publish") == 0 && std::strcmp(method, MHD_HTTP_METHOD_POST) == 0;
    return isQuestion ? MHD_YES : reply(connection, MHD_HTTP_NOT_FOUND);
  }
  auto* form = static_cast<QByteArray*>(*state);
  if (*uploadSize == 0) {
    const bool allowed = form->size() <= kMaxFormBytes && static_cast<PublishGate*>(gate)->allows(*form);
    return reply(connection, allowed ? MHD_HTTP_OK : MHD_HTTP_FORBIDDEN);
  }
  if (form->size() <= kMaxFormBytes)
    form->append(upload, static_cast<int>(std::min<std::size_t>(*uploadSize, kMaxFormBytes + 1)));
  *uploadSize = 0;
  return MHD_YES;
}

MHD_Result answer(void* gate, MHD_Connection* connection, const char* url, const char* method,
                  const char* version, const char* upload, std::size_t* uploadSize, void** state) {
  return static_cast<MHD_Result>(
      onRequest(gate, connection, url, method, version, upload, uploadSize, state));
}

void onRequestEnd(void* /*gate*/, MHD_Connection*, void** state, MHD_RequestTerminationCode) {
  delete static_cast<QByteArray*>(*state);
  *state = nullptr;
}

/// A key with "%" may come as it is or encoded.
bool isSecret(const QByteArray& given, const QByteArray& secret) {
  return secretEquals(given, secret) || secretEquals(QByteArray::fromPercentEncoding(given), secret);
}

QString streamOf(const PublishRequest& request) {
  return request.app + QLatin1Char('/') + request.name;
}

}  // namespace

PublishGate::PublishGate(const QString& workFolder, const Secrets& secrets)
    : workFolder_(workFolder), secrets_(secrets), control_(workFolder) {}

PublishGate::~PublishGate() {
  stop();
}

bool PublishGate::start() {
  const int folder = openFolder(workFolder_);
  const int socket = folder < 0 ? folder : listenInFolder(folder, NginxConfig::kGateSocket);
  if (folder >= 0)
    ::close(folder);
  if (socket >= 0) {
    daemon_ = MHD_start_daemon(MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_POLL | MHD_USE_THREAD_PER_CONNECTION,
                               0, nullptr, nullptr, answer, this, MHD_OPTION_LISTEN_SOCKET, socket,
                               MHD_OPTION_CONNECTION_LIMIT, kConnectionLimit, MHD_OPTION_CONNECTION_TIMEOUT,
                               kConnectionTimeoutS, MHD_OPTION_NOTIFY_COMPLETED, onRequestEnd, this,
                               MHD_OPTION_END);
    if (!daemon_)
      ::close(socket);
  }
  if (!daemon_)
    qCWarning(lcIncome, "failed to open the gate of the income server, nobody can publish");
  return daemon_ != nullptr;
}

void PublishGate::stop() {
  {
    MutexLock lock(mutex_);
    isStopping_ = true;
  }
  wake_.notify_all();
  if (daemon_)
    MHD_stop_daemon(daemon_);
  daemon_ = nullptr;
}

bool PublishGate::allows(const QByteArray& form) {
  const std::optional<PublishRequest> request = PublishRequest::fromForm(form);
  if (!request)
    return false;
  const QString reason = refusal(*request);
  if (reason.isEmpty())
    return true;
  ++refused_;
  logRefusal(*request, reason);
  return false;
}

/// Why the publisher is refused; empty when it may publish.
QString PublishGate::refusal(const PublishRequest& request) {
  QString byRules = refusalByRules(request);
  if (!byRules.isEmpty())
    return byRules;
  const QString stream = streamOf(request);
  {
    MutexLock lock(mutex_);
    if (judged_.contains(stream))
      return QStringLiteral("another publisher comes at the same time");
    judged_.insert(stream);
  }
  const auto end = qScopeGuard([&] {
    MutexLock lock(mutex_);
    judged_.remove(stream);
  });
  return refusalByPublisher(request);
}

QString PublishGate::refusalByRules(const PublishRequest& request) const {
  if (request.app == QLatin1String("live"))
    return isSecret(request.secret, secrets_.liveSecret)
               ? QString()
               : QStringLiteral("nobody but this program publishes there");
  if (request.app != QLatin1String("income") || !PublishRules::instance().allows(request.name))
    return QStringLiteral("no channel has that name");
  if (!secrets_.publishKey.isEmpty() && !isSecret(request.key, secrets_.publishKey))
    return request.key.isEmpty() ? QStringLiteral("the key is missing") : QStringLiteral("the key is wrong");
  return QString();
}

/// A publisher that sends is never replaced. One that sends nothing has lost its network, and its end of the
/// connection is gone: it must not keep its successor out.
QString PublishGate::refusalByPublisher(const PublishRequest& request) {
  // Without an answer the verdict is nginx's, which takes no second publisher.
  const std::optional<RtmpPublisher> present = publisherOf(request);
  if (!present)
    return QString();
  QString isPublished = QStringLiteral("it is published already by %1").arg(printable(present->addr));
  if (present->bytesIn == 0 && present->connectedMs < kFirstPacketMs)
    return isPublished;
  QElapsedTimer silence;
  silence.start();
  while (silence.elapsed() < kSilence.count()) {
    if (!pause())
      return QStringLiteral("the server ends");
    const std::optional<RtmpPublisher> now = publisherOf(request);
    if (!now)
      return QString();
    if (now->clientId != present->clientId || now->bytesIn > present->bytesIn)
      return isPublished;
  }
  return replace(*present, request) ? QString() : isPublished;
}

/// True when the ghost is gone.
bool PublishGate::replace(const RtmpPublisher& ghost, const PublishRequest& request) {
  qCInfo(lcIncome, "%s : %s sends nothing, %s takes its place", loggable(streamOf(request)).constData(),
         loggable(ghost.addr).constData(), loggable(request.addr).constData());
  control_.drop(ghost, kAnswerLimit);
  QElapsedTimer sinceDrop;
  sinceDrop.start();
  while (sinceDrop.elapsed() < kDropLimit.count()) {
    const std::optional<RtmpPublisher> now = publisherOf(request);
    if (!now || now->clientId != ghost.clientId)
      return !now;
    if (!pause())
      return false;
  }
  return false;
}

std::optional<RtmpPublisher> PublishGate::publisherOf(const PublishRequest& request) const {
  const QList<RtmpPublisher> all = control_.publishers(kAnswerLimit).value_or(QList<RtmpPublisher>());
  const auto found = std::find_if(all.begin(), all.end(), [&request](const RtmpPublisher& publisher) {
    return publisher.app == request.app && publisher.name == request.name;
  });
  return found == all.end() ? std::nullopt : std::optional(*found);
}

/// nginx tells of no change by itself, so it is asked again after a pause. False when the gate ends.
bool PublishGate::pause() {
  MutexLock lock(mutex_);
  return !wake_.wait_for(lock, kLookPause, [this]() REQUIRES(mutex_) { return isStopping_; });
}

/// Encoders with a single field for all may send the key as a part of the name.
QByteArray PublishGate::loggable(const QString& text) const {
  QByteArray masked = text.toUtf8();
  for (const QByteArray& secret : {secrets_.liveSecret, secrets_.publishKey}) {
    if (!secret.isEmpty())
      masked.replace(secret, "***");
  }
  return printable(QString::fromUtf8(masked)).toLatin1();
}

void PublishGate::logRefusal(const PublishRequest& request, const QString& reason) {
  int unlogged = 0;
  {
    MutexLock lock(mutex_);
    // A few in a row are told at once, since an operator tries things out; a flood is not.
    if (!sinceLogged_.isValid() || sinceLogged_.elapsed() >= kLogPauseMs)
      loggedInARow_ = 0;
    if (++loggedInARow_ > kLogBurst) {
      ++unlogged_;
      return;
    }
    sinceLogged_.start();
    unlogged = std::exchange(unlogged_, 0);
  }
  const QByteArray others =
      unlogged > 0 ? QByteArray(", and ") + QByteArray::number(unlogged) + " before" : "";
  qCWarning(lcIncome, "refused to publish %s from %s : %s%s", loggable(streamOf(request)).constData(),
            loggable(request.addr).constData(), qUtf8Printable(reason), others.constData());
}

}  // namespace korvia

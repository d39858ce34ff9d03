#include "NginxControl.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QXmlStreamReader>
#include <algorithm>
#include <cerrno>

#include "FolderSocket.h"
#include "NginxConfig.h"

namespace korvia {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kMaxAnswerBytes = 4 * 1024 * 1024;

bool waitFor(int socket, short events, Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
  pollfd place{socket, events, 0};
  return left.count() > 0 && ::poll(&place, 1, static_cast<int>(left.count())) > 0;
}

bool sendAll(int socket, const QByteArray& request, Clock::time_point deadline) {
  int sent = 0;
  while (sent < request.size()) {
    if (!waitFor(socket, POLLOUT, deadline))
      return false;
    const ssize_t count = ::send(socket, request.constData() + sent,
                                 static_cast<std::size_t>(request.size() - sent), MSG_NOSIGNAL);
    if (count < 0 && errno != EAGAIN && errno != EINTR)
      return false;
    sent += static_cast<int>(std::max<ssize_t>(count, 0));
  }
  return true;
}

/// Everything until the other side closes.
std::optional<QByteArray> readAll(int socket, Clock::time_point deadline) {
  QByteArray all;
  char block[16 * 1024];
  while (all.size() < kMaxAnswerBytes && waitFor(socket, POLLIN, deadline)) {
    const ssize_t count = ::recv(socket, block, sizeof block, 0);
    if (count == 0)
      return all;
    if (count > 0)
      all.append(block, static_cast<int>(count));
    else if (errno != EAGAIN && errno != EINTR)
      break;
  }
  return std::nullopt;
}

/// One "client" element. False for a player.
bool readClient(QXmlStreamReader& xml, RtmpPublisher& publisher) {
  bool isPublishing = false;
  while (xml.readNextStartElement()) {
    if (xml.name() == QLatin1String("publishing"))
      isPublishing = true;
    const QString text = xml.readElementText(QXmlStreamReader::SkipChildElements);
    if (xml.name() == QLatin1String("id"))
      publisher.clientId = text.toInt();
    else if (xml.name() == QLatin1String("address"))
      publisher.addr = text;
    else if (xml.name() == QLatin1String("time"))
      publisher.connectedMs = text.toLongLong();
  }
  return isPublishing;
}

/// One "stream" element. Nothing while nobody publishes it.
std::optional<RtmpPublisher> readStream(QXmlStreamReader& xml, const QString& app) {
  RtmpPublisher stream;
  bool isPublished = false;
  while (xml.readNextStartElement()) {
    if (xml.name() == QLatin1String("name")) {
      stream.name = xml.readElementText();
    } else if (xml.name() == QLatin1String("bytes_in")) {
      stream.bytesIn = xml.readElementText().toLongLong();
    } else if (xml.name() == QLatin1String("client")) {
      RtmpPublisher client;
      if (readClient(xml, client)) {
        isPublished = true;
        stream.addr = client.addr;
        stream.clientId = client.clientId;
        stream.connectedMs = client.connectedMs;
      } else {
        ++stream.players;
      }
    } else {
      xml.skipCurrentElement();
    }
  }
  stream.app = app;
  return isPublished ? std::optional(stream) : std::nullopt;
}

}  // namespace

NginxControl::NginxControl(const QString& workFolder) : folder_(openFolder(workFolder)) {}

NginxControl::~NginxControl() {
  if (folder_ >= 0)
    ::close(folder_);
}

bool NginxControl::isReady(TimeLimit limit) const {
  return get("/ready", limit).has_value();
}

std::optional<QList<RtmpPublisher>> NginxControl::publishers(TimeLimit limit) const {
  const std::optional<QByteArray> statistics = get("/stat", limit);
  return statistics ? parse(*statistics) : std::nullopt;
}

void NginxControl::drop(const RtmpPublisher& publisher, TimeLimit limit) const {
  get("/control/drop/publisher?clientid=" + QByteArray::number(publisher.clientId), limit);
}

std::optional<QList<RtmpPublisher>> NginxControl::parse(QByteArray statistics) {
  // nginx writes names of streams and clients as they come; control characters would end the reading.
  for (char& c : statistics) {
    if (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\r' && c != '\t')
      c = '?';
  }
  QXmlStreamReader xml(
      QString::fromUtf8(statistics).replace(QChar(0xFFFE), QChar('?')).replace(QChar(0xFFFF), QChar('?')));
  QList<RtmpPublisher> publishers;
  QString app;
  while (!xml.atEnd()) {
    // The name of an application comes before its streams, which readStream takes whole.
    if (xml.readNext() != QXmlStreamReader::StartElement)
      continue;
    if (xml.name() == QLatin1String("name"))
      app = xml.readElementText();
    else if (xml.name() == QLatin1String("stream")) {
      if (const std::optional<RtmpPublisher> publisher = readStream(xml, app))
        publishers.append(*publisher);
    }
  }
  return xml.hasError() ? std::nullopt : std::optional(publishers);
}

std::optional<QByteArray> NginxControl::get(const QByteArray& path, TimeLimit limit) const {
  const Clock::time_point deadline = Clock::now() + limit;
  const int socket = connectInFolder(folder_, NginxConfig::kControlSocket);
  if (socket < 0)
    return std::nullopt;
  std::optional<QByteArray> answer;
  if (sendAll(socket, "GET " + path + " HTTP/1.0\r\n\r\n", deadline))
    answer = readAll(socket, deadline);
  ::close(socket);
  const int body = answer ? answer->indexOf("\r\n\r\n") : -1;
  const bool isGood = body >= 0 && answer->startsWith("HTTP/1.1 2");
  return isGood ? std::optional(answer->mid(body + 4)) : std::nullopt;
}

}  // namespace korvia

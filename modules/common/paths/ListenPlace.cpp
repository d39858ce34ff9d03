#include "ListenPlace.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

namespace korvia {

namespace {

constexpr int kMaxPort = 65535;
// A client that does not fit into the backlog retries only after a second.
constexpr int kBacklog = 256;

std::optional<in_addr> addressOf(const QString& text) {
  in_addr address{};
  if (inet_pton(AF_INET, text.toLatin1().constData(), &address) != 1)
    return std::nullopt;
  return address;
}

bool isLoopback(in_addr address) {
  return ntohl(address.s_addr) >> 24 == IN_LOOPBACKNET;
}

}  // namespace

bool isListenAddress(const QString& text) {
  return addressOf(text).has_value();
}

bool isOwnAddress(const QString& address) {
  const int socket = openListener(address, 0);
  if (socket >= 0)
    ::close(socket);
  return socket >= 0;
}

QStringList listenAddresses() {
  const QString loopback = QStringLiteral("127.0.0.1");
  const QString wanted = qEnvironmentVariable(kListenVariable);
  const std::optional<in_addr> address = addressOf(wanted);
  if (!address || wanted == loopback)
    return {loopback};
  if (address->s_addr == htonl(INADDR_ANY))
    return {wanted};
  return {loopback, wanted};
}

bool listensToOthers() {
  const std::optional<in_addr> address = addressOf(listenAddresses().constLast());
  return address && !isLoopback(*address);
}

int openListener(const QString& address, int port) {
  const std::optional<in_addr> parsed = addressOf(address);
  if (!parsed || port < 0 || port > kMaxPort)
    return -EINVAL;
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (socket < 0)
    return -errno;
  // With SO_REUSEADDR old connections in TIME_WAIT do not make a port look busy; a listener still does.
  const int on = 1;
  ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_addr = *parsed;
  place.sin_port = htons(static_cast<uint16_t>(port));
  if (::bind(socket, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0 &&
      ::listen(socket, kBacklog) == 0)
    return socket;
  const int error = errno;
  ::close(socket);
  return -error;
}

}  // namespace korvia

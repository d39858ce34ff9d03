#include "LoopbackPort.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

#include "ListenPlace.h"

namespace korvia {

namespace {
constexpr int kMaxPort = 65535;
}  // namespace

int LoopbackPort::listenOn(int port) {
  return openListener(QStringLiteral("127.0.0.1"), port);
}

bool LoopbackPort::isFree(int port) {
  if (port < 1)
    return false;
  const QStringList addresses = listenAddresses();
  return std::all_of(addresses.begin(), addresses.end(), [port](const QString& address) {
    const int socket = openListener(address, port);
    if (socket < 0)
      return false;
    ::close(socket);
    return true;
  });
}

int LoopbackPort::nextFree(int first, int tries) {
  const int last = std::min(kMaxPort, first + tries - 1);
  for (int port = std::max(1, first); port <= last; ++port) {
    if (isFree(port))
      return port;
  }
  return 0;
}

int LoopbackPort::portOf(int socket) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0)
    return 0;
  return ntohs(address.sin_port);
}

}  // namespace korvia

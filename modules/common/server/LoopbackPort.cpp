#include "LoopbackPort.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace korvia {

namespace {
constexpr int kMaxPort = 65535;
// A client that does not fit into the backlog retries only after a second.
constexpr int kBacklog = 256;
}  // namespace

int LoopbackPort::listenOn(int port) {
  if (port < 0 || port > kMaxPort)
    return -EINVAL;
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (socket < 0)
    return -errno;
  // With SO_REUSEADDR old connections in TIME_WAIT do not make a port look busy; a listener still does.
  const int on = 1;
  ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<uint16_t>(port));
  if (::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
      ::listen(socket, kBacklog) == 0)
    return socket;
  const int error = errno;
  ::close(socket);
  return -error;
}

bool LoopbackPort::isFree(int port) {
  if (port < 1)
    return false;
  const int socket = listenOn(port);
  if (socket < 0)
    return false;
  ::close(socket);
  return true;
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

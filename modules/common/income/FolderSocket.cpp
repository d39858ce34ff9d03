#include "FolderSocket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#include <cstdio>

namespace korvia {

namespace {

constexpr int kBacklog = 64;

sockaddr_un placeIn(int folder, const char* name) {
  sockaddr_un place{};
  place.sun_family = AF_UNIX;
  std::snprintf(place.sun_path, sizeof place.sun_path, "/proc/self/fd/%d/%s", folder, name);
  return place;
}

int closeWithError(int socket) {
  const int error = errno;
  ::close(socket);
  return -error;
}

}  // namespace

int openFolder(const QString& path) {
  const int folder = ::open(QFile::encodeName(path).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  return folder < 0 ? -errno : folder;
}

int listenInFolder(int folder, const char* name) {
  ::unlinkat(folder, name, 0);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (socket < 0)
    return -errno;
  const sockaddr_un place = placeIn(folder, name);
  const bool listens = ::bind(socket, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0 &&
                       ::listen(socket, kBacklog) == 0;
  return listens ? socket : closeWithError(socket);
}

int connectInFolder(int folder, const char* name) {
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (socket < 0)
    return -errno;
  const sockaddr_un place = placeIn(folder, name);
  const bool connected = ::connect(socket, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0;
  return connected ? socket : closeWithError(socket);
}

}  // namespace korvia

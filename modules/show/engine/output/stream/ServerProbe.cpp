#include "ServerProbe.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace korvia {

namespace {

constexpr int kCallMs = 1000;

}  // namespace

ServerProbe::ServerProbe(const QString& host, int port, QByteArray greeting)
    : greeting_(std::move(greeting)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  const QByteArray text = host == QLatin1String("localhost") ? QByteArray("127.0.0.1") : host.toLatin1();
  if (port > 0 && inet_pton(AF_INET, text.constData(), &address.sin_addr) == 1)
    address_ = address;
}

void ServerProbe::restart() {
  hangUp();
  sinceCall_.start();
}

void ServerProbe::hangUp() {
  if (socket_ >= 0)
    ::close(std::exchange(socket_, -1));
}

void ServerProbe::call() {
  sinceCall_.start();
  isGreeted_ = false;
  socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (socket_ >= 0 &&
      ::connect(socket_, reinterpret_cast<const sockaddr*>(&*address_), sizeof *address_) != 0 &&
      errno != EINPROGRESS)
    hangUp();
}

ServerProbe::Answer ServerProbe::ask() {
  if (socket_ < 0)
    return Answer::Refused;
  pollfd state{socket_, static_cast<short>(isGreeted_ ? POLLIN : POLLOUT), 0};
  if (::poll(&state, 1, 0) == 0)
    return Answer::None;
  if (isGreeted_)
    return Answer::Yes;
  if (state.revents & (POLLERR | POLLHUP))
    return Answer::Refused;
  isGreeted_ = true;
  if (greeting_.isEmpty())
    return Answer::Yes;
  const ssize_t sent =
      ::send(socket_, greeting_.constData(), static_cast<std::size_t>(greeting_.size()), MSG_NOSIGNAL);
  return sent == greeting_.size() ? Answer::None : Answer::Refused;
}

bool ServerProbe::hasReturned() {
  if (!address_)
    return false;
  if (socket_ < 0) {
    if (!sinceCall_.hasExpired(kCallMs))
      return false;
    call();
  }
  // One that is frozen keeps the call, and answers to it when it runs again.
  const Answer answer = ask();
  if (answer != Answer::None)
    hangUp();
  return answer == Answer::Yes;
}

}  // namespace korvia

// Where the income server is found, for the server itself and for what this machine sends to it. The
// environment tells: KORVIA_RTMP_PORT and KORVIA_INCOME_LISTEN. Stateless, usable from any thread.
#pragma once
#include <arpa/inet.h>

#include <QString>

namespace korvia {

/// The wanted RTMP port, 1 to 65535. The server takes a higher one when it is in use.
inline int incomeRtmpPort() {
  constexpr int kDefaultPort = 1935;
  bool isNumber = false;
  const int port = qEnvironmentVariableIntValue("KORVIA_RTMP_PORT", &isNumber);
  return isNumber && port >= 1 && port <= 65535 ? port : kDefaultPort;
}

/// The numeric IPv4 address under which this machine reaches the server.
inline QString incomeLocalAddress() {
  const QString listening = qEnvironmentVariable("KORVIA_INCOME_LISTEN");
  in_addr address{};
  const bool isOne = inet_pton(AF_INET, listening.toLatin1().constData(), &address) == 1;
  return isOne && address.s_addr != htonl(INADDR_ANY) ? listening : QStringLiteral("127.0.0.1");
}

}  // namespace korvia

// Which port the income server wants, for the server itself and for what this machine sends to it. The
// environment tells: KORVIA_RTMP_PORT. Stateless, usable from any thread.
#pragma once
#include <QtGlobal>

namespace korvia {

/// The wanted RTMP port, 1 to 65535. The server takes a higher one when it is in use.
inline int incomeRtmpPort() {
  constexpr int kDefaultPort = 1935;
  bool isNumber = false;
  const int port = qEnvironmentVariableIntValue("KORVIA_RTMP_PORT", &isNumber);
  return isNumber && port >= 1 && port <= 65535 ? port : kDefaultPort;
}

}  // namespace korvia

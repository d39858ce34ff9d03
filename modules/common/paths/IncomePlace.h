// What the environment tells of the income server, for the server itself and for what this machine sends to
// it. KORVIA_RTMP_PORT is the wanted port. KORVIA_PUBLISH_KEY hands the key of publishers over from the
// program to the server. Stateless, usable from any thread.
#pragma once
#include <QtGlobal>

namespace korvia {

/// Empty or missing when publishers need no key.
inline constexpr const char* kPublishKeyVariable = "KORVIA_PUBLISH_KEY";

/// The wanted RTMP port, 1 to 65535. The server takes a higher one when it is in use.
inline int incomeRtmpPort() {
  constexpr int kDefaultPort = 1935;
  bool isNumber = false;
  const int port = qEnvironmentVariableIntValue("KORVIA_RTMP_PORT", &isNumber);
  return isNumber && port >= 1 && port <= 65535 ? port : kDefaultPort;
}

}  // namespace korvia

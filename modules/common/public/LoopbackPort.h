// TCP ports of the servers: tests whether one is free, and listens on one of 127.0.0.1. Usable from any
// thread.
#pragma once

namespace korvia {

class LoopbackPort {
 public:
  /// A socket that listens on 127.0.0.1:port (0 lets the system choose), closed on exec; the caller owns it.
  /// Negative errno on failure, -EADDRINUSE for a busy port.
  static int listenOn(int port);

  /// True when the port is 1 to 65535 and can be listened on now, on each of listenAddresses().
  static bool isFree(int port);

  /// The first free port in [first, first + tries), never above 65535; 0 when there is none.
  static int nextFree(int first, int tries);

  /// The port of a socket from listenOn; 0 on failure.
  static int portOf(int socket);
};

}  // namespace korvia

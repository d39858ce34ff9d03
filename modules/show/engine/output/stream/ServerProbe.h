// Notices that a server is back that refused connections, or accepted them without an answer because it was
// frozen. It asks the server once a second with a connection of its own, so that a push need not wait for its
// next try, which is up to 10 s away. Thread of the target; never waits.
#pragma once
#include <netinet/in.h>

#include <QByteArray>
#include <QElapsedTimer>
#include <QString>
#include <optional>

namespace korvia {

class ServerProbe {
 public:
  /// `host` is a numeric IPv4 address or "localhost"; the name of another host is not looked up, since that
  /// may take seconds, and such a server is never found back. The server answers to the greeting; an empty
  /// one asks for a connection alone.
  ServerProbe(const QString& host, int port, QByteArray greeting);
  ~ServerProbe() { hangUp(); }
  ServerProbe(const ServerProbe&) = delete;
  ServerProbe& operator=(const ServerProbe&) = delete;

  /// The wait is over: hangs up, and forgets what was found.
  void restart();
  /// True when the server answers and did not before in this wait. A server that answered from the beginning
  /// refuses the stream for another reason and is left to the usual waits.
  bool hasReturned();

 private:
  enum class Answer { None, Yes, Refused };

  void call();
  Answer ask();
  void hangUp();

  std::optional<sockaddr_in> address_;
  const QByteArray greeting_;
  int socket_ = -1;
  bool isGreeted_ = false;
  bool wasAway_ = false;
  bool isThere_ = false;  // and was from the beginning
  QElapsedTimer sinceCall_;
};

}  // namespace korvia

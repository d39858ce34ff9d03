// Notices that a server is back that refused connections, or accepted them without an answer because it was
// frozen. It calls the server once a second, so that a push need not wait for its next try, which is up to 10
// s away. Thread of the target; never waits.
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

  /// A wait begins. The first call comes a second later.
  void restart();
  /// The server answers, also when it hangs up at once.
  bool hasReturned();
  /// The wait is over.
  void hangUp();

 private:
  enum class Answer { None, Yes, Refused };

  void call();
  Answer ask();

  std::optional<sockaddr_in> address_;
  const QByteArray greeting_;
  int socket_ = -1;
  bool isGreeted_ = false;
  QElapsedTimer sinceCall_;
};

}  // namespace korvia

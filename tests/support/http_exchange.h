// One raw HTTP exchange on 127.0.0.1, for tests that look at every byte of it.
#pragma once
#include <QByteArray>
#include <QTcpSocket>

namespace korvia::test {

struct HttpReply {
  int status = 0;  // 0: no answer
  QByteArray head;
  QByteArray body;
};

/// Sends the request as it stands and reads until the server closes; five seconds for each step.
inline HttpReply exchange(int port, const QByteArray& request) {
  QTcpSocket socket;
  socket.connectToHost("127.0.0.1", static_cast<quint16>(port));
  HttpReply reply;
  if (!socket.waitForConnected(5000))
    return reply;
  socket.write(request);
  QByteArray all;
  while (socket.waitForReadyRead(5000))
    all += socket.readAll();
  all += socket.readAll();
  const int end = all.indexOf("\r\n\r\n");
  reply.head = all.left(end);
  reply.body = end < 0 ? QByteArray() : all.mid(end + 4);
  reply.status = all.split(' ').value(1).toInt();
  return reply;
}

inline HttpReply request(int port, const QByteArray& method, const QByteArray& path,
                         const QByteArray& host = "127.0.0.1") {
  return exchange(port, method + " " + path + " HTTP/1.1\r\nHost: " + host + "\r\nConnection: close\r\n\r\n");
}

}  // namespace korvia::test

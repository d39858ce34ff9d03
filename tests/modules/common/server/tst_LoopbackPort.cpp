// Free and busy ports of 127.0.0.1.
#include <unistd.h>

#include <QtTest>
#include <cerrno>

#include "ListenPlace.h"
#include "LoopbackPort.h"

using korvia::LoopbackPort;

class LoopbackPortTest : public QObject {
  Q_OBJECT

 private slots:
  void freeMeansOnEachAddressOfTheServers() {
    const int socket = korvia::openListener("127.0.0.2", 0);
    QVERIFY(socket >= 0);
    const int port = LoopbackPort::portOf(socket);
    QVERIFY(LoopbackPort::isFree(port));
    qputenv(korvia::kListenVariable, "127.0.0.2");
    QVERIFY(!LoopbackPort::isFree(port));
    QVERIFY(LoopbackPort::nextFree(port, 20) > port);
    qunsetenv(korvia::kListenVariable);
    ::close(socket);
  }

  void busyWhileSomebodyListens() {
    const int socket = LoopbackPort::listenOn(0);
    QVERIFY(socket >= 0);
    const int port = LoopbackPort::portOf(socket);
    QVERIFY(port > 0);
    QVERIFY(!LoopbackPort::isFree(port));
    QCOMPARE(LoopbackPort::listenOn(port), -EADDRINUSE);
    QCOMPARE(LoopbackPort::nextFree(port, 1), 0);
    const int next = LoopbackPort::nextFree(port, 20);
    QVERIFY(next > port && next < port + 20);
    ::close(socket);
    QVERIFY(LoopbackPort::isFree(port));
    QCOMPARE(LoopbackPort::nextFree(port, 1), port);
  }

  void portsOutsideTheRange() {
    QVERIFY(!LoopbackPort::isFree(0));
    QVERIFY(!LoopbackPort::isFree(-1));
    QVERIFY(!LoopbackPort::isFree(65536));
    QCOMPARE(LoopbackPort::listenOn(65536), -EINVAL);
    QCOMPARE(LoopbackPort::nextFree(65536, 20), 0);
    QCOMPARE(LoopbackPort::portOf(-1), 0);
  }
};

QTEST_GUILESS_MAIN(LoopbackPortTest)
#include "tst_LoopbackPort.moc"

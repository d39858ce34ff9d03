// The addresses that the servers listen on.
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QtTest>
#include <cerrno>

#include "ListenPlace.h"

using korvia::isListenAddress;
using korvia::listenAddresses;
using korvia::listensToOthers;
using korvia::openListener;

class ListenPlaceTest : public QObject {
  Q_OBJECT

 private slots:
  void ownAddressesAreKnown() {
    for (const char* own : {"127.0.0.1", "127.0.0.2", "0.0.0.0"})
      QVERIFY2(korvia::isOwnAddress(own), own);
    for (const char* other : {"198.51.100.77", "localhost", ""})
      QVERIFY2(!korvia::isOwnAddress(other), other);
  }

  void cleanup() { qunsetenv(korvia::kListenVariable); }

  void addresses_data() {
    QTest::addColumn<QByteArray>("wanted");
    QTest::addColumn<QStringList>("addresses");
    QTest::addColumn<bool>("toOthers");
    const QStringList alone{"127.0.0.1"};
    QTest::newRow("nothing") << QByteArray() << alone << false;
    QTest::newRow("loopback") << QByteArray("127.0.0.1") << alone << false;
    QTest::newRow("another loopback")
        << QByteArray("127.0.0.2") << QStringList{"127.0.0.1", "127.0.0.2"} << false;
    QTest::newRow("one address") << QByteArray("192.0.2.7") << QStringList{"127.0.0.1", "192.0.2.7"} << true;
    QTest::newRow("all") << QByteArray("0.0.0.0") << QStringList{"0.0.0.0"} << true;
    QTest::newRow("a name") << QByteArray("localhost") << alone << false;
    QTest::newRow("IPv6") << QByteArray("::") << alone << false;
    QTest::newRow("a part") << QByteArray("192.168.1") << alone << false;
    QTest::newRow("a port") << QByteArray("0.0.0.0:80") << alone << false;
  }
  void addresses() {
    QFETCH(QByteArray, wanted);
    QFETCH(QStringList, addresses);
    QFETCH(bool, toOthers);
    if (!wanted.isNull())
      qputenv(korvia::kListenVariable, wanted);
    QCOMPARE(listenAddresses(), addresses);
    QCOMPARE(listensToOthers(), toOthers);
    QCOMPARE(isListenAddress(wanted), addresses.contains(wanted));
  }

  void listenersOfTwoAddressesShareAPort() {
    const int first = openListener("127.0.0.1", 0);
    QVERIFY(first >= 0);
    sockaddr_in place{};
    socklen_t length = sizeof place;
    QCOMPARE(::getsockname(first, reinterpret_cast<sockaddr*>(&place), &length), 0);
    const int port = ntohs(place.sin_port);
    const int second = openListener("127.0.0.2", port);
    QVERIFY(second >= 0);
    QCOMPARE(openListener("127.0.0.2", port), -EADDRINUSE);
    QCOMPARE(openListener("0.0.0.0", port), -EADDRINUSE);
    ::close(second);
    ::close(first);
  }

  void badPlacesAreRefused() {
    QCOMPARE(openListener("here", 0), -EINVAL);
    QCOMPARE(openListener("127.0.0.1", -1), -EINVAL);
    QCOMPARE(openListener("127.0.0.1", 65536), -EINVAL);
    // No machine has this address.
    QCOMPARE(openListener("192.0.2.7", 0), -EADDRNOTAVAIL);
  }
};

QTEST_GUILESS_MAIN(ListenPlaceTest)
#include "tst_ListenPlace.moc"

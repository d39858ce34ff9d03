// What is made of the addresses that an operator types.
#include <QtTest>

#include "engine/source/live/StreamAddress.h"

using namespace korvia;

class StreamAddressTest : public QObject {
  Q_OBJECT

 private:
  static QByteArray property(const StreamAddress& address, const QByteArray& name) {
    for (const auto& [key, value] : address.properties) {
      if (key == name)
        return value;
    }
    return "none";
  }

 private slots:
  void elementByScheme_data() {
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("element");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<int>("latencyMs");
    QTest::newRow("http") << "http://127.0.0.1:8080/live/0"
                          << "souphttpsrc" << QByteArray("location")
                          << QByteArray("http://127.0.0.1:8080/live/0") << 1000;
    QTest::newRow("https") << " https://a.example/x.m3u8 "
                           << "souphttpsrc" << QByteArray("location")
                           << QByteArray("https://a.example/x.m3u8") << 1000;
    QTest::newRow("rtmp") << "rtmp://127.0.0.1:1935/live/0"
                          << "rtmp2src" << QByteArray("location")
                          << QByteArray("rtmp://127.0.0.1:1935/live/0") << 1000;
    QTest::newRow("rtsp") << "rtsp://127.0.0.1:554/live/0"
                          << "rtspsrc" << QByteArray("latency") << QByteArray("1000") << 1000;
    // The protocol keeps half of the cache itself, so the sum is the cache.
    QTest::newRow("srt") << "srt://127.0.0.1:9000"
                         << "srtsrc" << QByteArray("latency") << QByteArray("500") << 500;
    QTest::newRow("udp with @") << "udp://@127.0.0.1:7000"
                                << "udpsrc" << QByteArray("uri") << QByteArray("udp://127.0.0.1:7000")
                                << 1000;
    QTest::newRow("udp on all addresses")
        << "udp://@:7000"
        << "udpsrc" << QByteArray("uri") << QByteArray("udp://0.0.0.0:7000") << 1000;
    QTest::newRow("udp in IPv6") << "udp://[::1]:7000"
                                 << "udpsrc" << QByteArray("uri") << QByteArray("udp://[::1]:7000") << 1000;
    QTest::newRow("multicast on an interface")
        << "udp://@234.0.0.1:7000?iface=eth7"
        << "udpsrc" << QByteArray("multicast-iface") << QByteArray("eth7") << 1000;
  }
  void elementByScheme() {
    QFETCH(QString, url);
    QFETCH(QString, element);
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, value);
    QFETCH(int, latencyMs);
    const auto address = StreamAddress::fromUrl(url, 1000);
    QVERIFY(address);
    QCOMPARE(QString::fromLatin1(address->element), element);
    QCOMPARE(property(*address, name), value);
    QCOMPARE(address->latencyNs, std::int64_t{latencyMs} * 1'000'000);
  }

  void cacheIsBounded_data() {
    QTest::addColumn<int>("cacheMs");
    QTest::addColumn<int>("latencyMs");
    QTest::newRow("none") << 0 << 40;
    QTest::newRow("negative") << -5 << 40;
    QTest::newRow("as the operator wants it") << 500 << 500;
    QTest::newRow("an hour") << 3'600'000 << 10'000;
  }
  void cacheIsBounded() {
    QFETCH(int, cacheMs);
    QFETCH(int, latencyMs);
    QCOMPARE(StreamAddress::fromUrl("http://a/b", cacheMs)->latencyNs, std::int64_t{latencyMs} * 1'000'000);
    QCOMPARE(property(*StreamAddress::fromUrl("srt://a:1", 0), "latency"), QByteArray("0"));
  }

  void whoListensWaitsForEver() {
    QVERIFY(StreamAddress::fromUrl("udp://@:7000", 0)->onlyListens);
    QVERIFY(StreamAddress::fromUrl("srt://:7000", 0)->onlyListens);
    QVERIFY(StreamAddress::fromUrl("srt://127.0.0.1:7000?mode=listener", 0)->onlyListens);
    QVERIFY(!StreamAddress::fromUrl("srt://127.0.0.1:7000", 0)->onlyListens);
    QVERIFY(!StreamAddress::fromUrl("rtmp://127.0.0.1/a/b", 0)->onlyListens);
  }

  void whatCannotBeReceived_data() {
    QTest::addColumn<QString>("url");
    for (const char* url : {"", "nothing", "gopher://x", "udp://@127.0.0.1", "http://", "rtmp:///live", "://",
                            "udp://:99999", "file:///etc"})
      QTest::newRow(url) << QString(url);
  }
  void whatCannotBeReceived() {
    QFETCH(QString, url);
    QVERIFY(!StreamAddress::fromUrl(url, 1000));
  }
};

QTEST_APPLESS_MAIN(StreamAddressTest)
#include "tst_stream_address.moc"

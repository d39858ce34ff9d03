// Streams on the loopback: pictures with their sound, a bad network, what is no stream. Figures are printed;
// what is asserted holds on a loaded machine too.
#include "StreamServers.h"

using namespace korvia;
using namespace korvia::test;

class StreamSourceTest : public QObject {
  Q_OBJECT

 private slots:
  void pictureAndSoundInStep_data() {
    QTest::addColumn<int>("mostLatencyMs");
    for (const char* kind : {"udp", "multicast", "srt", "http", "rtmp", "rtsp"})
      QTest::newRow(kind) << kLiveMs;
    QTest::newRow("hls") << 15'000;
  }
  void pictureAndSoundInStep() {
    QFETCH(int, mostLatencyMs);
    const auto place = makePlace(QTest::currentDataTag());
    place->start();
    LiveRig rig(urlRecord(place->url()));
    QVERIFY(rig.waitForFresh(mostLatencyMs, 20'000) >= 0);
    // The clock learns what the way is like.
    QTest::qWait(4500);
    const auto ticks = rig.next(100);
    const auto beeps = beepsAfterFlashes(ticks);
    const SourceFigures figures = rig->figures();
    qInfo(
        "%s: latency %.0f ms with a cache of %d, beep %.0f ms after the flash, %d of %d pictures fresh, %lld "
        "jumps",
        QTest::currentDataTag(), median(latencies(ticks)), kCacheMs, median(beeps), freshPictures(ticks),
        static_cast<int>(ticks.size()), figures.live.stampJumps);
    QVERIFY(median(latencies(ticks)) <= mostLatencyMs);
    QVERIFY(freshPictures(ticks) > static_cast<int>(ticks.size()) * 3 / 4);
    QVERIFY(beeps.size() >= 2);
    QVERIFY2(std::abs(median(beeps)) <= 40, QByteArray::number(median(beeps)));
    QCOMPARE(rig.state(), int(Playing));
    QTRY_VERIFY(rig.rate() > 15);
    QVERIFY(figures.live.isLive);
    QCOMPARE(figures.live.connections, qint64(1));
    QVERIFY(figures.live.latencyMs > 0);
  }

  void picturesWaitCoded_data() {
    QTest::addColumn<QString>("encoding");
    QTest::newRow("udp with b-frames") << "h264-bframes";
    QTest::newRow("rtsp") << "h264";
  }
  void picturesWaitCoded() {
    constexpr int kLongCacheMs = 1200;
    constexpr int kDecodedMs = 600;  // 300 is what is aimed at
    QFETCH(QString, encoding);
    std::unique_ptr<StreamPlace> place;
    LiveSender sender;
    QString url;
    if (QByteArray(QTest::currentDataTag()) == "rtsp") {
      place = makePlace("rtsp");
      place->start();
      url = place->url();
    } else {
      const int port = freeUdpPort();
      sender.send(toUdp(port), QStringLiteral("320x180"), 25, encoding);
      url = QStringLiteral("udp://127.0.0.1:%1").arg(port);
    }
    LiveRig rig(urlRecord(url, kLongCacheMs));
    QVERIFY(rig.waitForFresh(kLongCacheMs + 1500, 20'000) >= 0);
    // The hold grows at first.
    QTest::qWait(6000);
    const auto ticks = rig.next(100);
    const auto beeps = beepsAfterFlashes(ticks);
    const SourceFigures figures = rig->figures();
    qInfo("%s: %lld pictures wait decoded, latency %.0f ms, beep %.0f ms after the flash, %d of %d fresh",
          QTest::currentDataTag(), figures.framesQueued, median(latencies(ticks)), median(beeps),
          freshPictures(ticks), static_cast<int>(ticks.size()));
    QVERIFY(figures.framesQueued * 40 <= kDecodedMs);
    QVERIFY(median(latencies(ticks)) > kLongCacheMs - 500);
    QVERIFY(freshPictures(ticks) > static_cast<int>(ticks.size()) * 3 / 4);
    QVERIFY2(std::abs(median(beeps)) <= 40, QByteArray::number(median(beeps)));
    QCOMPARE(rig.state(), int(Playing));
    QCOMPARE(figures.live.connections, qint64(1));
  }

  void lossAndJitterCostSinglePictures() {
    const int from = freeUdpPort();
    const int to = freeUdpPort();
    LiveSender network;
    network.relay(from, to, 2, 60);
    LiveSender sender;
    sender.send(mpegTs(QStringLiteral("udp://127.0.0.1:%1?pkt_size=1316").arg(from)));
    LiveRig rig(urlRecord(QStringLiteral("udp://@127.0.0.1:%1").arg(to)));
    QVERIFY(rig.waitForFresh(kLiveMs) >= 0);
    QTest::qWait(4500);
    const auto ticks = rig.next(200);
    qInfo("loss: latency %.0f ms, beep %.0f ms after the flash, %d of %d pictures fresh",
          median(latencies(ticks)), median(beepsAfterFlashes(ticks)), freshPictures(ticks),
          static_cast<int>(ticks.size()));
    QVERIFY(freshPictures(ticks) > static_cast<int>(ticks.size()) * 3 / 4);
    QCOMPARE(rig->figures().live.connections, qint64(1));
    QVERIFY(std::abs(median(beepsAfterFlashes(ticks))) <= 40);
  }

  void pauseKeepsThePictureAndTheConnection() {
    UdpPlace place;
    place.start();
    LiveRig rig(urlRecord(place.url()));
    QVERIFY(rig.waitForFresh(kLiveMs) >= 0);
    rig->pause();
    QTRY_COMPARE(rig.state(), int(Paused));
    QVERIFY(freshPictures(rig.next(20)) <= 1);
    rig->play();
    QVERIFY(rig.waitForFresh(kLiveMs) >= 0);
    QCOMPARE(rig->figures().live.connections, qint64(1));
  }

  void wrongAddressesAreErrors_data() {
    QTest::addColumn<QString>("url");
    for (const char* url :
         {"nothing", "gopher://x", "udp://@127.0.0.1", "http://", "rtmp:///live", "", "://", "udp://:99999"})
      QTest::newRow(url) << QString(url);
  }
  void wrongAddressesAreErrors() {
    QFETCH(QString, url);
    LiveRig rig(urlRecord(url));
    QTRY_COMPARE(rig.state(), int(Error));
    QCOMPARE(rig.reason(), QStringLiteral("address cannot be received"));
    QCOMPARE(rig.next(2).back().number, -1);
    // The watchdog would start it again for ever.
    QCOMPARE(rig.rate(), 25.0F);
  }

  void noiseIsNoStream() {
    const int port = freeUdpPort();
    LiveRig rig(urlRecord(QStringLiteral("udp://127.0.0.1:%1").arg(port)));
    QUdpSocket socket;
    std::minstd_rand random(7);
    for (int packet = 0; packet < 400; ++packet) {
      QByteArray bytes(1316, 0);
      for (char& byte : bytes)
        byte = static_cast<char>(random());
      socket.writeDatagram(bytes, QHostAddress(QHostAddress::LocalHost), static_cast<quint16>(port));
      if (packet % 20 == 0)
        QTest::qWait(20);
    }
    QCOMPARE(rig.next(5).back().number, -1);
  }

  void aFileIsAFilm() {
    tagKorviaShowSourceInfo info =
        urlRecord(QUrl::fromLocalFile(QStringLiteral(MEDIA_DIR "/clip25.mp4")).toString());
    LiveRig rig(info);
    QTRY_COMPARE(rig.state(), int(Playing));
    QVERIFY(!rig->figures().live.isLive);
    QTRY_VERIFY(rig.next(2).back().number > 2);
  }

  void aFileOnAServerPlaysAtItsOwnPace() {
    const int port = freeTcpPort();
    QProcess server;
    server.setProcessChannelMode(QProcess::MergedChannels);
    server.start("python3", {"-m", "http.server", "--bind", "127.0.0.1", "--directory", MEDIA_DIR,
                             QString::number(port)});
    LiveRig rig(urlRecord(QStringLiteral("http://127.0.0.1:%1/long.ts").arg(port)));
    QTRY_COMPARE_WITH_TIMEOUT(rig.state(), int(Playing), 10'000);
    QTRY_VERIFY(rig.next(2).back().number > 2);
    const auto ticks = rig.next(50);
    const int passed = ticks.back().number - ticks.front().number;
    QVERIFY2(std::abs(passed - static_cast<int>(ticks.size())) < 15, QByteArray::number(passed));
    server.kill();
    server.waitForFinished();
  }
};

QTEST_GUILESS_MAIN(StreamSourceTest)
#include "tst_stream_source.moc"

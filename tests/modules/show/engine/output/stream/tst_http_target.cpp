// Viewers of the live stream: many, slow ones, and those that ask for something else.
#include "StreamRig.h"
#include "engine/output/stream/HttpTarget.h"
#include "support/VideoJudge.h"
#include "support/http_exchange.h"

using namespace korvia;
using namespace korvia::test;

class HttpTargetTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir folder_;

  static HttpSettings settingsFor(int port) {
    HttpSettings settings;
    settings.port = port;
    settings.path = QStringLiteral("/live/0");
    settings.retry.firstMs = 200;
    settings.retry.longestMs = 200;
    return settings;
  }
  static std::unique_ptr<QTcpSocket> view(int port) {
    auto viewer = std::make_unique<QTcpSocket>();
    viewer->connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port));
    if (!viewer->waitForConnected(5000))
      return nullptr;
    viewer->write("GET /live/0 HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    return viewer->waitForBytesWritten(5000) ? std::move(viewer) : nullptr;
  }

 private slots:
  void viewersBeginAtAKeyFrame_data() {
    QTest::addColumn<int>("encapsulation");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QByteArray>("contentType");
    QTest::newRow("ts") << int(EncapsulationTs) << "ts" << QByteArray("video/mp2t");
    QTest::newRow("flv") << int(EncapsulationFlv) << "flv" << QByteArray("video/x-flv");
  }
  void viewersBeginAtAKeyFrame() {
    QFETCH(int, encapsulation);
    QFETCH(QString, suffix);
    QFETCH(QByteArray, contentType);
    HttpSettings settings = settingsFor(freePort());
    settings.encapsulation = encapsulation;
    LiveSlot live({std::make_shared<HttpTarget>(settings)});
    QVERIFY(live.waitFor(KorviaShowTargetState::Up));
    QCOMPARE(live.report().name, QString("HTTP"));
    // A viewer joins in the middle of a group.
    QTRY_VERIFY(live.slot().figures().framesEncoded > 60);
    const QString fileName =
        storeSecond(QString("http://127.0.0.1:%1/live/0").arg(settings.port), folder_, suffix);
    QVERIFY(!fileName.isEmpty());
    const VideoVerdict verdict = VideoJudge::judge(fileName);
    QVERIFY(verdict.frames >= 24);
    QCOMPARE(verdict.keyFrames.value(0, -1), 0);
    const HttpReply head = request(settings.port, "HEAD", "/live/0");
    QCOMPARE(head.status, 200);
    QVERIFY2(head.head.contains("Content-Type: " + contentType), head.head.constData());
    QCOMPARE(head.body, QByteArray());
  }

  void fiftyViewersAndSlowOnes() {
    const HttpSettings settings = settingsFor(freePort());
    LiveSlot live({std::make_shared<HttpTarget>(settings)}, 2000);
    QVERIFY(live.waitFor(KorviaShowTargetState::Up));
    std::vector<std::unique_ptr<QTcpSocket>> viewers;
    for (int i = 0; i < 50; ++i) {
      viewers.push_back(view(settings.port));
      QVERIFY(viewers.back());
      if (i < 10)
        viewers.back()->setReadBufferSize(1);  // reads no further
    }
    // More than two seconds, so that all of them have got more than what was there when they came.
    QTRY_VERIFY_WITH_TIMEOUT(
        std::all_of(viewers.begin() + 10, viewers.end(),
                    [](const auto& viewer) { return viewer->bytesAvailable() > 600'000; }),
        10'000);
    QCOMPARE(live.report().state, KorviaShowTargetState::Up);
    QCOMPARE(live.slot().figures().framesDropped, qint64(0));
    // The end of the output is the end of all connections, also of those that hang.
    live.stop();
    live.slot().finish();
    QVERIFY(live.slot().waitFinished(2500));
    QTRY_COMPARE(viewers.back()->state(), QAbstractSocket::UnconnectedState);
  }

  void otherRequestsAreRefused() {
    const HttpSettings settings = settingsFor(freePort());
    LiveSlot live({std::make_shared<HttpTarget>(settings)});
    QVERIFY(live.waitFor(KorviaShowTargetState::Up));
    QCOMPARE(request(settings.port, "GET", "/").status, 404);
    QCOMPARE(request(settings.port, "GET", "/live/0/x.ts").status, 404);
    QCOMPARE(request(settings.port, "GET", "/live").status, 404);
    QCOMPARE(request(settings.port, "POST", "/live/0").status, 405);
  }

  void listensOnLoopbackUnlessTold() {
    const HttpSettings settings = settingsFor(freePort());
    {
      LiveSlot live({std::make_shared<HttpTarget>(settings)});
      QVERIFY(live.waitFor(KorviaShowTargetState::Up));
      QTcpServer other;
      QVERIFY(other.listen(QHostAddress("127.0.0.2"), static_cast<quint16>(settings.port)));
    }
    qputenv("KORVIA_LISTEN", "0.0.0.0");
    LiveSlot live({std::make_shared<HttpTarget>(settings)});
    QVERIFY(live.waitFor(KorviaShowTargetState::Up));
    qunsetenv("KORVIA_LISTEN");
    QTcpSocket socket;
    socket.connectToHost("127.0.0.2", static_cast<quint16>(settings.port));
    QVERIFY(socket.waitForConnected(5000));
  }

  void listensOnTheLoopbackBesideTheAddressForOthers() {
    qputenv("KORVIA_LISTEN", "127.0.0.2");
    const HttpSettings settings = settingsFor(freePort());
    LiveSlot live({std::make_shared<HttpTarget>(settings)});
    QVERIFY(live.waitFor(KorviaShowTargetState::Up));
    qunsetenv("KORVIA_LISTEN");
    for (const char* address : {"127.0.0.1", "127.0.0.2"}) {
      QTcpSocket socket;
      socket.connectToHost(address, static_cast<quint16>(settings.port));
      QVERIFY(socket.waitForConnected(5000));
    }
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress("127.0.0.3"), static_cast<quint16>(settings.port)));
  }

  void aPortThatIsTakenIsTriedAgain() {
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost));
    LiveSlot live({std::make_shared<HttpTarget>(settingsFor(other.serverPort()))});
    QVERIFY(live.waitFor(KorviaShowTargetState::Lost));
    QCOMPARE(live.report().reason, QString("the port is in use"));
    other.close();
    QVERIFY(live.waitFor(KorviaShowTargetState::Up));
  }
};

QTEST_GUILESS_MAIN(HttpTargetTest)
#include "tst_http_target.moc"

// The web server over real sockets, as the console loads it.
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

#include "CKorviaWebServerHelper.h"
#include "LoopbackPort.h"
#include "StatusBoard.h"
#include "support/http_exchange.h"

using korvia::LoopbackPort;
using korvia::StatusBoard;
using korvia::test::exchange;
using korvia::test::HttpReply;
using korvia::test::request;

namespace {

int pickPort() {
  const int socket = LoopbackPort::listenOn(0);
  const int port = LoopbackPort::portOf(socket);
  ::close(socket);
  return port;
}

void store(const QString& fileName, const QByteArray& contents) {
  QDir().mkpath(QFileInfo(fileName).path());
  QFile file(fileName);
  QVERIFY(file.open(QIODevice::WriteOnly));
  QCOMPARE(file.write(contents), contents.size());
}

}  // namespace

class WebServerTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    QVERIFY(helper_.create());
    QVERIFY(helper_._interface->isValid());
    port_ = pickPort();
    const int wanted = port_;
    QCOMPARE(helper_._interface->open(nullptr, &port_), 0);
    QVERIFY(port_ >= wanted);
  }

  void cleanup() {
    if (helper_._interface)
      helper_._interface->close();
    helper_.releaseObject();
  }

  void interfaceIsAskedForByIdentifier() {
    IKorviaWebServer* server = helper_._interface;
    QCOMPARE(server->queryInterface(&kIKorviaWebServerId, 0x01010100), static_cast<void*>(server));
    QCOMPARE(server->queryInterface(&kIUnknownExId, 0), static_cast<void*>(server));
    QVERIFY(!server->queryInterface(&kIKorviaWebServerId, 0x01010200));
    QVERIFY(!server->queryInterface(&kIMainFrameId, 0x01010100));
    CKorviaWebServerHelper stranger;
    stranger._version = 0x02010100;
    QVERIFY(!stranger.create());
    QVERIFY(stranger._module);
  }

  void statusIsTheBoard() {
    const QJsonObject engine{{"fps", 25.0}, {"name", QString::fromUtf8("é <b>\"\\")}};
    StatusBoard::instance().publish("engine", engine);
    const HttpReply reply = request(port_, "GET", "/status.json");
    StatusBoard::instance().publish("engine", {});
    QCOMPARE(reply.status, 200);
    QVERIFY(reply.head.contains("Content-Type: application/json"));
    QVERIFY(reply.head.contains("Cache-Control: no-store"));
    QVERIFY(reply.head.contains("X-Content-Type-Options: nosniff"));
    const QJsonObject status = QJsonDocument::fromJson(reply.body).object();
    QCOMPARE(status["sections"].toObject()["engine"].toObject(), engine);
    QVERIFY(status["uptimeSeconds"].isDouble());
    QVERIFY(status["uptimeSeconds"].toInt() < 60);
  }

  void pageIsSelfContained() {
    for (const char* path : {"/", "/page.css", "/page.js", "/basics.js", "/commands.js", "/desk.js",
                             "/figures.js", "/icon.svg"}) {
      const HttpReply reply = request(port_, "GET", path);
      QCOMPARE(reply.status, 200);
      QVERIFY(!reply.body.isEmpty());
      // Namespaces are names, not addresses.
      QByteArray text = reply.body;
      text.replace("http://www.w3.org/", "");
      QVERIFY2(!text.contains("http://") && !text.contains("https://") && !text.contains("url(//"), path);
      QVERIFY2(!text.contains("innerHTML") && !text.contains("eval("), path);
    }
    const HttpReply page = request(port_, "GET", "/");
    QVERIFY(page.head.contains("Content-Type: text/html; charset=utf-8"));
    QVERIFY(page.body.startsWith("<!DOCTYPE html>"));
    // The policy forbids what stands in the page itself.
    QVERIFY(!page.body.contains("<style") && !page.body.contains(" style=") &&
            !page.body.contains(" onclick="));
    QVERIFY(!page.body.contains("<script>"));
  }

  void answersHaveTheHeadersOfACarefulSite() {
    for (const char* path : {"/", "/page.js", "/status.json", "/metrics", "/log.txt", "/nothing"}) {
      const HttpReply reply = request(port_, "GET", path);
      for (const char* header : {"Content-Security-Policy: default-src 'none'; script-src 'self';",
                                 "X-Content-Type-Options: nosniff", "X-Frame-Options: DENY",
                                 "Referrer-Policy: no-referrer", "Cross-Origin-Resource-Policy: same-origin",
                                 "Cross-Origin-Opener-Policy: same-origin", "Cache-Control: no-store"})
        QVERIFY2(reply.head.contains(header), header);
      QVERIFY(!reply.head.contains("unsafe"));
      QVERIFY(!reply.head.contains("Access-Control-Allow"));
      QVERIFY(!reply.head.contains("Server:"));
    }
  }

  void headHasNoBody() {
    const HttpReply page = request(port_, "GET", "/");
    const HttpReply head = request(port_, "HEAD", "/");
    QCOMPARE(head.status, 200);
    QVERIFY(head.body.isEmpty());
    QVERIFY(head.head.contains("Content-Length: " + QByteArray::number(page.body.size())));
  }

  void otherPathsAndMethods() {
    QCOMPARE(request(port_, "GET", "/status").status, 404);
    QCOMPARE(request(port_, "GET", "/../../etc/passwd").status, 404);
    QCOMPARE(request(port_, "POST", "/nothing").status, 404);
    // The decoded path would end at the NUL.
    QCOMPARE(request(port_, "GET", "/%00").status, 400);
    QCOMPARE(request(port_, "GET", "/status.json%00.html").status, 400);
    for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS", "PATCH"}) {
      const HttpReply reply = request(port_, method, "/status.json");
      QCOMPARE(reply.status, 405);
      QVERIFY(reply.head.contains("Allow: GET, HEAD"));
    }
  }

  void strangeHostIsRefused() {
    const QByteArray port = QByteArray::number(port_);
    QCOMPARE(request(port_, "GET", "/status.json", "localhost:" + port).status, 200);
    QCOMPARE(request(port_, "GET", "/status.json", "127.0.0.1:" + port).status, 200);
    QCOMPARE(request(port_, "GET", "/status.json", "evil.example:" + port).status, 403);
    QCOMPARE(request(port_, "GET", "/status.json", "127.0.0.1.evil.example").status, 403);
  }

  void strangeOriginIsRefused() {
    const QByteArray host = "127.0.0.1:" + QByteArray::number(port_);
    const auto statusFor = [&](const QByteArray& origin) {
      return exchange(port_, "GET /status.json HTTP/1.1\r\nHost: " + host + "\r\nOrigin: " + origin +
                                 "\r\nConnection: close\r\n\r\n")
          .status;
    };
    QCOMPARE(statusFor("http://" + host), 200);
    for (const char* origin : {"http://evil.example", "null", "https://127.0.0.1", "http://127.0.0.1",
                               "http://127.0.0.1:1", "http://localhost:8800"})
      QCOMPARE(statusFor(origin), 403);
  }

  void segmentsOfTheFolderAreServed() {
    const QTemporaryDir root;
    const QString folder = root.filePath("hls");
    store(folder + "/index.m3u8", "#EXTM3U\n");
    store(folder + "/segment-1-000000.ts", QByteArray(100000, 'x'));
    QCOMPARE(request(port_, "GET", "/hls/0/index.m3u8").status, 404);
    helper_._interface->serveSegments(" hls/0/", folder);
    const HttpReply list = request(port_, "GET", "/hls/0/index.m3u8");
    QCOMPARE(list.status, 200);
    QCOMPARE(list.body, QByteArray("#EXTM3U\n"));
    QVERIFY(list.head.contains("Content-Type: application/vnd.apple.mpegurl"));
    QVERIFY(list.head.contains("Cache-Control: no-cache"));
    QVERIFY(list.head.contains("X-Content-Type-Options: nosniff"));
    const HttpReply segment = request(port_, "GET", "/hls/0/segment-1-000000.ts");
    QCOMPARE(segment.body.size(), 100000);
    QVERIFY(segment.head.contains("Content-Type: video/mp2t"));
    QCOMPARE(request(port_, "HEAD", "/hls/0/segment-1-000000.ts").status, 200);
    QCOMPARE(request(port_, "POST", "/hls/0/index.m3u8").status, 404);
    QCOMPARE(request(port_, "GET", "/hls/0/index.m3u8", "evil.example").status, 403);
    helper_._interface->serveSegments("/", folder);
    QCOMPARE(request(port_, "GET", "/index.m3u8").status, 200);
    QCOMPARE(request(port_, "GET", "/hls/0/index.m3u8").status, 404);
    helper_._interface->serveSegments("/", QString());
    QCOMPARE(request(port_, "GET", "/index.m3u8").status, 404);
  }

  void nothingElseOfTheFolderIsServed() {
    const QTemporaryDir root;
    const QString folder = root.filePath("hls");
    store(folder + "/index.m3u8", "#EXTM3U\n");
    store(folder + "/secret.txt", "secret");
    store(folder + "/below/other.ts", "other");
    store(root.filePath("link.ts"), "outside");
    QVERIFY(QFile::link(root.filePath("link.ts"), folder + "/link.ts"));
    QVERIFY(QDir().mkpath(folder + "/folder.ts"));
    QCOMPARE(::mkfifo(qPrintable(folder + "/pipe.ts"), 0600), 0);
    helper_._interface->serveSegments("/hls/0", folder);
    QCOMPARE(request(port_, "GET", "/hls/0/index.m3u8").status, 200);
    for (const char* path :
         {"/hls/0/secret.txt", "/hls/0/link.ts", "/hls/0/../link.ts", "/hls/0/%2e%2e/link.ts",
          "/hls/0/%2e%2e%2flink.ts", "/hls/0/below/other.ts", "/hls/0/folder.ts", "/hls/0/pipe.ts", "/hls/0/",
          "/hls/0", "/hls/0/none.ts", "/hls/00/index.m3u8"})
      QVERIFY2(request(port_, "GET", path).status == 404, path);
  }

  void rubbishHarmsNobody() {
    QVERIFY(exchange(port_, "\x16\x03\x01 what is this\r\n\r\n").status != 200);
    QVERIFY(exchange(port_, "GET /" + QByteArray(100000, 'x') + " HTTP/1.1\r\n\r\n").status != 200);
    QCOMPARE(request(port_, "GET", "/status.json").status, 200);
  }

  void manyConnectionsDoNotWearItOut() {
    std::vector<std::unique_ptr<QTcpSocket>> idle;
    for (int n = 0; n < 40; ++n) {
      idle.push_back(std::make_unique<QTcpSocket>());
      idle.back()->connectToHost("127.0.0.1", static_cast<quint16>(port_));
      QVERIFY(idle.back()->waitForConnected(5000));
    }
    idle.clear();
    QTRY_COMPARE(request(port_, "GET", "/status.json").status, 200);
  }

  void halfRequestsKeepNobodyOut_data() {
    QTest::addColumn<int>("count");
    QTest::newRow("32") << 32;
    QTest::newRow("200") << 200;
    QTest::newRow("400") << 400;
  }

  void halfRequestsKeepNobodyOut() {
    QFETCH(int, count);
    std::vector<std::unique_ptr<QTcpSocket>> half;
    for (int n = 0; n < count; ++n) {
      half.push_back(std::make_unique<QTcpSocket>());
      half.back()->connectToHost("127.0.0.1", static_cast<quint16>(port_));
      QVERIFY(half.back()->waitForConnected(5000));
      half.back()->write("GET /status.json HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Slow: ");
      QVERIFY(half.back()->waitForBytesWritten(5000));
    }
    for (int n = 0; n < 3; ++n) {
      QElapsedTimer timer;
      timer.start();
      QCOMPARE(request(port_, "GET", "/status.json").status, 200);
      QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    }
  }

  void busyPortGivesWay() {
    const int socket = LoopbackPort::listenOn(0);
    const int busy = LoopbackPort::portOf(socket);
    CKorviaWebServerHelper second;
    QVERIFY(second.create());
    int port = busy;
    QCOMPARE(second._interface->open(nullptr, &port), 0);
    QVERIFY(port > busy && port < busy + 100);
    QCOMPARE(request(port, "GET", "/status.json").status, 200);
    second._interface->close();
    ::close(socket);
  }

  void unsetPortTakesTheUsualOne() {
    for (const int unset : {0, -7, 70000}) {
      CKorviaWebServerHelper second;
      QVERIFY(second.create());
      int port = unset;
      QCOMPARE(second._interface->open(nullptr, &port), 0);
      QVERIFY(port >= 8800 && port < 8900);
      QCOMPARE(request(port, "GET", "/status.json").status, 200);
    }
  }

  void listensOnLoopbackAlone() {
    // A second listener on another loopback address can only have the port when ours holds 127.0.0.1 alone.
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress("127.0.0.2"), static_cast<quint16>(port_)));
  }

  void listensToOthersOnlyWhenTold() {
    helper_._interface->close();
    qputenv("KORVIA_LISTEN", "127.0.0.2");
    const auto reset = qScopeGuard([] { qunsetenv("KORVIA_LISTEN"); });
    QCOMPARE(helper_._interface->open(nullptr, &port_), 0);
    QCOMPARE(request(port_, "GET", "/status.json").status, 200);
    QTcpServer other;
    QVERIFY(!other.listen(QHostAddress("127.0.0.2"), static_cast<quint16>(port_)));
    QVERIFY(other.listen(QHostAddress("127.0.0.3"), static_cast<quint16>(port_)));
  }

  void closeFreesThePort() {
    helper_._interface->close();
    QVERIFY(LoopbackPort::isFree(port_));
    QCOMPARE(request(port_, "GET", "/").status, 0);
    helper_._interface->close();
    QCOMPARE(helper_._interface->open(nullptr, &port_), 0);
    QCOMPARE(request(port_, "GET", "/").status, 200);
  }

  void closeDoesNotWaitForIdleConnections() {
    QTcpSocket idle;
    idle.connectToHost("127.0.0.1", static_cast<quint16>(port_));
    QVERIFY(idle.waitForConnected(5000));
    idle.write("GET /status.json HTTP/1.1\r\n");
    QVERIFY(idle.waitForBytesWritten(5000));
    QElapsedTimer timer;
    timer.start();
    helper_._interface->close();
    QVERIFY(timer.elapsed() < 2000);
  }

  void secondOpenFails() {
    int port = port_;
    QVERIFY(helper_._interface->open(nullptr, &port) < 0);
    QCOMPARE(port, port_);
    CKorviaWebServerHelper second;
    QVERIFY(second.create());
    QVERIFY(second._interface->open(nullptr, nullptr) < 0);
  }

 private:
  CKorviaWebServerHelper helper_;
  int port_ = 0;
};

QTEST_GUILESS_MAIN(WebServerTest)
#include "tst_WebServer.moc"

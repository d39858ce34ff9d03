// The page folder of the income server against clients that want more than its pages.
#include <sys/stat.h>

#include <QTcpSocket>

#include "IncomeRig.h"

using korvia::test::exchange;
using korvia::test::figures;
using korvia::test::HttpReply;
using korvia::test::IncomeRig;
using korvia::test::request;

class PageServerTest : public QObject, private IncomeRig {
  Q_OBJECT

 private slots:
  void init() {
    QVERIFY(setUp());
    write(root_->filePath("secret.txt"), "secret");
    QVERIFY(QDir(html_).mkpath("folder/deep"));
    QVERIFY(QDir(html_).mkpath(".git"));
    write(html_ + "/page.txt", "page");
    write(html_ + "/.hidden", "secret");
    write(html_ + "/.git/config", "secret");
    write(html_ + "/folder/.env", "secret");
    QVERIFY(QFile::link(root_->filePath("secret.txt"), html_ + "/link.txt"));
    QVERIFY(QFile::link(root_->path(), html_ + "/out"));
    QVERIFY(QFile::link("/etc", html_ + "/folder/etc"));
    QVERIFY(QFile::link("page.txt", html_ + "/inner.txt"));
  }
  void cleanup() { tearDown(); }

  void nothingLeadsOutOfTheFolder_data() {
    QTest::addColumn<QByteArray>("path");
    const auto rows = [](const QByteArray& prefix, const QList<QByteArray>& ups, const QByteArray& target) {
      for (const QByteArray& up : ups) {
        for (const int times : {1, 2, 3, 8}) {
          const QByteArray path = prefix + up.repeated(times) + target;
          QTest::newRow(path.toPercentEncoding().constData()) << path;
        }
      }
    };
    const QList<QByteArray> ups = {
        "../",      "..%2f", "%2e%2e/", "%2e%2e%2f", ".%2e/",  "%252e%252e%252f", "..%5c", "..\\",
        "..%c0%af", "..;/",  "....//",  "%2e%2e%5c", "..%00/", "%uff0e%uff0e/",   "..//"};
    rows("/", ups, "secret.txt");
    rows("/folder/deep/", ups, "secret.txt");
    rows("/", ups, "etc/passwd");
    const QList<QByteArray> single = {"/.hidden",
                                      "/%2ehidden",
                                      "/.git/config",
                                      "/%2egit/config",
                                      "/.git/",
                                      "/folder/.env",
                                      "/folder/%2eenv",
                                      "//.hidden",
                                      "/folder//.env",
                                      "/folder/..%2f.hidden",
                                      "/link.txt",
                                      "/%6cink.txt",
                                      "/out/secret.txt",
                                      "/out/",
                                      "/out/html/page.txt",
                                      "/folder/etc/passwd",
                                      "/folder/etc/",
                                      "/out%2fsecret.txt",
                                      "/page.txt%00.html",
                                      "/%00",
                                      "/link.txt%00",
                                      "http://127.0.0.1/../secret.txt",
                                      "/secret.txt",
                                      "/nginx.conf",
                                      "/control.sock",
                                      "/gate.sock",
                                      "/.",
                                      "/..",
                                      "*",
                                      "secret.txt"};
    for (const QByteArray& path : single)
      QTest::newRow(path.toPercentEncoding().constData()) << path;
  }
  void nothingLeadsOutOfTheFolder() {
    QFETCH(QByteArray, path);
    if (!helper_._interface->isRunning())
      QCOMPARE(open(), 0);
    const HttpReply reply = request(port(), "GET", path);
    QVERIFY2(!reply.body.contains("secret") && !reply.body.contains("root:"), reply.body.constData());
    QVERIFY2(reply.status >= 400 || reply.body == "<p>korvia</p>",
             QByteArray::number(reply.status).constData());
  }

  void rawBytesLeadNowhere_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("NUL") << QByteArray("GET /page.txt\0/../../secret.txt HTTP/1.1\r\nHost: x\r\n\r\n", 51);
    QTest::newRow("no version") << QByteArray("GET /../secret.txt\r\n");
    QTest::newRow("line feeds") << QByteArray("GET /..\n/secret.txt HTTP/1.0\n\n");
    QTest::newRow("high bytes") << QByteArray("GET /\xc0\xae\xc0\xae/secret.txt HTTP/1.0\r\n\r\n");
    QTest::newRow("long") << QByteArray("GET /" + QByteArray(100'000, 'a') + " HTTP/1.0\r\n\r\n");
    QTest::newRow("many headers") << QByteArray("GET / HTTP/1.0\r\n" +
                                                QByteArray("a: b\r\n").repeated(20'000) + "\r\n");
  }
  void rawBytesLeadNowhere() {
    QFETCH(QByteArray, bytes);
    QCOMPARE(open(), 0);
    const HttpReply reply = exchange(port(), bytes);
    QVERIFY(!reply.body.contains("secret"));
    QCOMPARE(request(port(), "GET", "/page.txt").body, QByteArray("page"));
  }

  void noListingAndNoOtherMethods() {
    QCOMPARE(open(), 0);
    QCOMPARE(request(port(), "GET", "/folder/").status, 403);
    QVERIFY(!request(port(), "GET", "/folder/").body.contains("deep"));
    QCOMPARE(request(port(), "HEAD", "/page.txt").status, 200);
    for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS", "PROPFIND", "TRACE", "CONNECT"})
      QVERIFY2(request(port(), method, "/page.txt").status >= 400, method);
  }

  void everyAnswerHasCarefulHeaders() {
    QCOMPARE(open(), 0);
    for (const char* path : {"/", "/page.txt", "/missing", "/.hidden", "/folder/"}) {
      const QByteArray head = request(port(), "GET", path).head;
      QVERIFY2(head.contains("X-Content-Type-Options: nosniff"), head.constData());
      QVERIFY2(head.contains("Referrer-Policy: no-referrer"), head.constData());
      QVERIFY2(head.contains("X-Frame-Options: SAMEORIGIN"), head.constData());
      QVERIFY2(head.contains("Server: nginx\r\n"), head.constData());
    }
    // The name in the request does not choose where a browser goes.
    QVERIFY(request(port(), "GET", "/folder", "evil.example").head.contains("Location: /folder/\r\n"));
  }

  void folderItselfMayBeALink() {
    QVERIFY(QFile::link(html_, root_->filePath("other")));
    html_ = root_->filePath("other");
    QCOMPARE(open(), 0);
    QCOMPARE(request(port(), "GET", "/page.txt").body, QByteArray("page"));
    QVERIFY(request(port(), "GET", "/folder/etc/passwd").status >= 400);
    QCOMPARE(request(port(), "GET", "/link.txt").status, 403);
  }

  void pipeHoldsNobodyUp() {
    QCOMPARE(::mkfifo(QFile::encodeName(html_ + "/pipe").constData(), 0600), 0);
    QCOMPARE(open(), 0);
    QCOMPARE(request(port(), "GET", "/pipe").status, 404);
  }

  void serverIsNotControlledByTheNetwork() {
    QCOMPARE(open(), 0);
    for (const char* path : {"/ready", "/stat", "/control", "/control/drop/publisher", "/publish"}) {
      for (const int anyPort : {port(), figures()["rtmpPort"].toInt()}) {
        const HttpReply reply = request(anyPort, "GET", path);
        QVERIFY2(reply.status == 404 || reply.status == 0, path);
        QVERIFY(!reply.body.contains("nginx_version"));
      }
    }
    // Neither by the name of a host.
    QCOMPARE(request(port(), "GET", "/stat", "unix:").status, 404);
    QCOMPARE(request(port(), "GET", "/stat", "localhost").status, 404);
  }

  void slowClientsHoldNobodyUp() {
    QCOMPARE(open(), 0);
    constexpr int kClients = 1000;
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (int count = 0; count < kClients; ++count) {
      auto socket = std::make_unique<QTcpSocket>();
      QVERIFY(socket->bind(QHostAddress("127.0.0.2")));
      socket->connectToHost("127.0.0.1", static_cast<quint16>(port()));
      QVERIFY(socket->waitForConnected(2000));
      socket->write("GET /page.txt HTTP/1.1\r\nHost: ");
      socket->flush();
      clients.push_back(std::move(socket));
    }
    for (int count = 0; count < 10; ++count) {
      QElapsedTimer timer;
      timer.start();
      QCOMPARE(request(port(), "GET", "/page.txt").body, QByteArray("page"));
      QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    }
  }

  void anAddressHasALimitOfAnswers() {
    QFile large(html_ + "/large");
    QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(64 * 1024 * 1024));
    QCOMPARE(open(), 0);
    // Clients that take nothing of a large answer.
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (int count = 0; count < 16; ++count) {
      auto socket = std::make_unique<QTcpSocket>();
      socket->setReadBufferSize(1024);
      QVERIFY(socket->bind(QHostAddress("127.0.0.2")));
      socket->connectToHost("127.0.0.1", static_cast<quint16>(port()));
      QVERIFY(socket->waitForConnected(2000));
      socket->write("GET /large HTTP/1.1\r\nHost: x\r\n\r\n");
      QVERIFY(socket->waitForReadyRead(2000));
      clients.push_back(std::move(socket));
    }
    QTcpSocket next;
    QVERIFY(next.bind(QHostAddress("127.0.0.2")));
    next.connectToHost("127.0.0.1", static_cast<quint16>(port()));
    QVERIFY(next.waitForConnected(2000));
    next.write("GET /page.txt HTTP/1.1\r\nHost: x\r\n\r\n");
    QVERIFY(next.waitForReadyRead(2000));
    QVERIFY(next.readAll().startsWith("HTTP/1.1 503"));
    QCOMPARE(request(port(), "GET", "/page.txt").body, QByteArray("page"));
  }

 private:
  static int port() { return figures()["httpPort"].toInt(); }
};

QTEST_GUILESS_MAIN(PageServerTest)
#include "tst_page_server.moc"

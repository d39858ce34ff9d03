// Commands, events, pictures, figures and limits of the web server, over real sockets.
#include <QJsonArray>
#include <QJsonDocument>
#include <QSysInfo>
#include <QtTest>
#include <atomic>
#include <thread>

#include "CKorviaWebServerHelper.h"
#include "LogTail.h"
#include "LoopbackPort.h"
#include "StatusBoard.h"
#include "WebDesk.h"
#include "server/ConnectionTable.h"
#include "server/RequestCheck.h"
#include "support/http_exchange.h"

using korvia::LogTail;
using korvia::StatusBoard;
using korvia::WebCommand;
using korvia::WebDesk;
using korvia::WebReach;
using korvia::WebVerdict;
using korvia::test::exchange;
using korvia::test::HttpReply;
using korvia::test::request;

namespace {

constexpr int kPerAddress = korvia::ConnectionTable::kPerAddress;

std::unique_ptr<QTcpSocket> connectTo(int port, const char* from = "127.0.0.1") {
  auto socket = std::make_unique<QTcpSocket>();
  socket->bind(QHostAddress(QString::fromLatin1(from)));
  socket->connectToHost("127.0.0.1", static_cast<quint16>(port));
  return socket->waitForConnected(5000) ? std::move(socket) : nullptr;
}

/// Reads until the text comes; false after `limitMs` or at the end of the connection.
bool readUntil(QTcpSocket& socket, QByteArray& text, const QByteArray& wanted, int limitMs = 5000) {
  QElapsedTimer timer;
  timer.start();
  while (!text.contains(wanted) && timer.elapsed() < limitMs) {
    if (!socket.waitForReadyRead(limitMs) && socket.state() != QAbstractSocket::ConnectedState)
      break;
    text += socket.readAll();
  }
  return text.contains(wanted);
}

}  // namespace

class WebRequestsTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    QVERIFY(helper_.create());
    QCOMPARE(helper_._interface->open(nullptr, &port_), 0);
    commands_.clear();
  }

  void cleanup() {
    desk().setHandler({});
    desk().program().clear();
    desk().channels().clear();
    helper_._interface->close();
    helper_.releaseObject();
  }

  // Commands

  void commandsHaveTheirPaths_data() {
    using Kind = WebCommand::Kind;
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isOne");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("transition");
    QTest::addColumn<int>("channel");
    const auto row = [](const char* path, Kind kind, int transition, int channel) {
      QTest::newRow(path) << path << true << static_cast<int>(kind) << transition << channel;
    };
    row("/take/0", Kind::Take, 0, -1);
    row("/take/3/259", Kind::Take, 3, 259);
    row("/cut", Kind::Cut, 0, -1);
    row("/cut/16", Kind::Cut, 0, 16);
    row("/select/17", Kind::Select, 0, 17);
    row("/record/start", Kind::StartRecord, 0, -1);
    row("/record/stop", Kind::StopRecord, 0, -1);
    row("/stream/start", Kind::StartStream, 0, -1);
    row("/stream/stop", Kind::StopStream, 0, -1);
    for (const char* path : {"/take", "/take/", "/take/4", "/take/-1", "/take/0/", "/take/0/x",
                             "/take/0/99999", "/cut/", "/select", "/select/", "/select/1/2", "/record",
                             "/record/pause", "/stream/start/", "/Take/0", "/take/0\n", ""})
      QTest::newRow(qPrintable(QString("not %1").arg(path))) << path << false << 0 << 0 << -1;
  }

  void commandsHaveTheirPaths() {
    QFETCH(QString, path);
    QFETCH(bool, isOne);
    const std::optional<WebCommand> command = WebCommand::parse(path);
    QCOMPARE(command.has_value(), isOne);
    if (!isOne)
      return;
    QTEST(static_cast<int>(command->kind), "kind");
    QTEST(command->transition, "transition");
    QTEST(command->channel.value_or(-1), "channel");
  }

  void commandReachesTheConsole() {
    takeCommands(WebVerdict::Accepted);
    const HttpReply reply = post("/take/2/17", desk().token().toLatin1());
    QCOMPARE(reply.status, 202);
    QCOMPARE(reply.body, QByteArray("{\"accepted\":true}"));
    QCOMPARE(commands_.size(), 1U);
    QVERIFY((commands_[0] == WebCommand{WebCommand::Kind::Take, 2, 17}));
    // A body is ignored.
    QCOMPARE(post("/cut", desk().token().toLatin1(), {}, "{\"a\":1}").status, 202);
    QCOMPARE(commands_.size(), 2U);
  }

  void verdictsOfTheConsoleAreTold() {
    QCOMPARE(post("/cut", desk().token().toLatin1()).status, 503);
    takeCommands(WebVerdict::NotReady);
    QCOMPARE(post("/cut", desk().token().toLatin1()).status, 503);
    takeCommands(WebVerdict::UnknownChannel);
    QCOMPARE(post("/cut/200", desk().token().toLatin1()).status, 404);
  }

  void commandNeedsTheToken() {
    takeCommands(WebVerdict::Accepted);
    const QByteArray token = desk().token().toLatin1();
    QCOMPARE(token.size(), 22);
    for (const QByteArray& wrong : {QByteArray(), token.left(21), token + "x", token.toUpper() + "-",
                                    QByteArray(22, 'A'), QByteArray(5000, 'A')}) {
      const HttpReply reply = post("/cut", wrong);
      QCOMPARE(reply.status, 401);
      QVERIFY(reply.head.contains("WWW-Authenticate: Bearer"));
    }
    QCOMPARE(sendRaw("POST /cut HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 0\r\n"
                     "Authorization: Basic " +
                     token + "\r\nConnection: close\r\n\r\n")
                 .status,
             401);
    // Neither the address nor a form carries it.
    QCOMPARE(sendRaw("POST /cut?token=" + token +
                     " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 0\r\n"
                     "Connection: close\r\n\r\n")
                 .status,
             401);
    QVERIFY(commands_.empty());
  }

  void commandOfAnotherSiteIsRefused() {
    takeCommands(WebVerdict::Accepted);
    const QByteArray token = desk().token().toLatin1();
    const QByteArray host = "127.0.0.1:" + QByteArray::number(port_);
    for (const QByteArray& header :
         {QByteArray("Origin: http://evil.example\r\n"), QByteArray("Origin: null\r\n"),
          QByteArray("Sec-Fetch-Site: cross-site\r\n"), QByteArray("Sec-Fetch-Site: same-site\r\n")})
      QCOMPARE(post("/cut", token, header).status, 403);
    QCOMPARE(
        sendRaw("POST /cut HTTP/1.1\r\nHost: evil.example\r\nContent-Length: 0\r\nAuthorization: Bearer " +
                token + "\r\nConnection: close\r\n\r\n")
            .status,
        403);
    QVERIFY(commands_.empty());
    QCOMPARE(sendRaw("POST /cut HTTP/1.1\r\nHost: " + host + "\r\nOrigin: http://" + host +
                     "\r\nSec-Fetch-Site: same-origin\r\nContent-Length: 0\r\nAuthorization: Bearer " +
                     token + "\r\nConnection: close\r\n\r\n")
                 .status,
             202);
  }

  void commandsAreNeverRead() {
    takeCommands(WebVerdict::Accepted);
    for (const char* method : {"GET", "HEAD", "PUT", "DELETE"}) {
      const HttpReply reply = request(port_, method, "/take/0");
      QCOMPARE(reply.status, 405);
      QVERIFY(reply.head.contains("Allow: POST"));
    }
    QVERIFY(commands_.empty());
  }

  void bodyIsBounded() {
    takeCommands(WebVerdict::Accepted);
    const QByteArray token = desk().token().toLatin1();
    QCOMPARE(post("/cut", token, {}, QByteArray(1024, 'x')).status, 202);
    QCOMPARE(post("/cut", token, {}, QByteArray(1025, 'x')).status, 413);
    const QByteArray chunk = "400\r\n" + QByteArray(0x400, 'x') + "\r\n";
    QVERIFY(sendRaw("POST /cut HTTP/1.1\r\nHost: 127.0.0.1\r\nTransfer-Encoding: chunked\r\nAuthorization: "
                    "Bearer " +
                    token + "\r\nConnection: close\r\n\r\n" + chunk + chunk + "0\r\n\r\n")
                .status != 202);
    QCOMPARE(commands_.size(), 1U);
  }

  // Events

  void newViewerIsToldTheStates() {
    auto viewer = openEvents("/events");
    QVERIFY(viewer);
    QByteArray text;
    QVERIFY(readUntil(*viewer, text, "retry: 1000\n\n"));
    QVERIFY(text.contains("Content-Type: text/event-stream"));
    QTRY_VERIFY(desk().events().hasViewers());
    desk().events().setState("tally", {{"program", 16}});
    QVERIFY(readUntil(*viewer, text, "event: tally\ndata: {\"program\":16}\n\n"));
    auto late = openEvents("/events");
    QByteArray lateText;
    QVERIFY(readUntil(*late, lateText, "event: tally\ndata: {\"program\":16}\n\n"));
    // What has not changed is not told again; what has happened is told to all.
    desk().events().setState("tally", {{"program", 16}});
    desk().events().tell("take", {{"to", 17}});
    QVERIFY(readUntil(*viewer, text, "event: take\ndata: {\"to\":17}\n\n"));
    QVERIFY(readUntil(*late, lateText, "event: take\ndata: {\"to\":17}\n\n"));
    QCOMPARE(text.count("event: tally"), 1);
    auto latest = openEvents("/events");
    QByteArray latestText;
    QVERIFY(readUntil(*latest, latestText, "event: tally"));
    QVERIFY(!latestText.contains("event: take"));
  }

  void levelsAreForThoseWhoAsk() {
    auto plain = openEvents("/events");
    QTRY_VERIFY(desk().events().hasViewers());
    QVERIFY(!desk().events().hasLevelViewers());
    auto meters = openEvents("/events?levels=1");
    QTRY_VERIFY(desk().events().hasLevelViewers());
    desk().events().setLevels({{"pgm", -20}});
    desk().events().tell("take", {});
    QByteArray metersText;
    QVERIFY(readUntil(*meters, metersText, "data: {\"pgm\":-20}"));
    QByteArray plainText;
    QVERIFY(readUntil(*plain, plainText, "event: take"));
    QVERIFY(!plainText.contains("levels"));
    meters->close();
    // Its end is noticed at the next text for it.
    const auto levelsLeft = [] {
      desk().events().setLevels({{"pgm", -10}});
      return desk().events().hasLevelViewers();
    };
    QTRY_VERIFY(!levelsLeft());
  }

  void slowViewerGetsTheNewestStates() {
    korvia::EventFeed feed;
    struct Sleeper final : korvia::WebSleeper {
      void sleep() override { ++sleeps; }
      void wake() override { ++wakes; }
      int sleeps = 0;
      int wakes = 0;
    } sleeper;
    using Next = korvia::EventFeed::Next;
    feed.open();
    feed.join(korvia::EventFeed::Levels::Without);
    korvia::EventFeed::Place place;
    QByteArray text;
    QVERIFY(feed.next(place, text, sleeper) == Next::Text);
    text.clear();
    QVERIFY(feed.next(place, text, sleeper) == Next::Wait);
    for (int n = 0; n < 500; ++n)
      feed.setState("tally", {{"program", n}});
    QCOMPARE(sleeper.sleeps, 1);
    QCOMPARE(sleeper.wakes, 1);
    QVERIFY(feed.next(place, text, sleeper) == Next::Text);
    QCOMPARE(text.count("event: tally"), 1);
    QVERIFY(text.contains("{\"program\":499}"));
    feed.close();
    text.clear();
    QVERIFY(feed.next(place, text, sleeper) == Next::Text);
    QVERIFY(text.contains("event: bye"));
    text.clear();
    QVERIFY(feed.next(place, text, sleeper) == Next::End);
    feed.leave(korvia::EventFeed::Levels::Without, sleeper);
  }

  void closeSaysGoodbye() {
    auto viewer = openEvents("/events");
    QTRY_VERIFY(desk().events().hasViewers());
    helper_._interface->close();
    QByteArray text;
    QVERIFY(readUntil(*viewer, text, "event: bye"));
    QTRY_COMPARE(viewer->state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(helper_._interface->open(nullptr, &port_), 0);
  }

  // Pictures

  void pictureIsWantedWhileSomebodyAsks() {
    QVERIFY(!desk().program().isWanted());
    std::atomic<bool> stop{false};
    // The console, which encodes only wanted pictures.
    std::thread console([&] {
      while (!stop) {
        if (desk().program().isWanted())
          desk().program().publish("picture");
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
      }
    });
    const HttpReply first = request(port_, "GET", "/program.jpg");
    const HttpReply next = request(port_, "GET", "/program.jpg?after=" + numberOf(first));
    stop = true;
    console.join();
    QCOMPARE(first.status, 200);
    QCOMPARE(first.body, QByteArray("picture"));
    QVERIFY(first.head.contains("Content-Type: image/jpeg"));
    QCOMPARE(next.status, 200);
    QVERIFY(numberOf(next).toInt() > numberOf(first).toInt());
    QVERIFY(!desk().channels().isWanted());
    QTRY_VERIFY(!desk().program().isWanted());
  }

  void pictureThatDoesNotComeIsNotWaitedForForever() {
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(request(port_, "GET", "/channels.jpg").status, 503);
    QVERIFY2(timer.elapsed() >= 1500 && timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));
    desk().channels().publish("one");
    const HttpReply first = request(port_, "GET", "/channels.jpg");
    QCOMPARE(first.status, 200);
    QCOMPARE(request(port_, "GET", "/channels.jpg?after=" + numberOf(first)).status, 304);
  }

  void oldPictureIsNotShown() {
    desk().program().publish("old");
    QCOMPARE(request(port_, "GET", "/program.jpg").status, 200);
    QTRY_VERIFY(!desk().program().isFresh());
    QCOMPARE(request(port_, "GET", "/program.jpg").status, 503);
  }

  void closeWakesThoseWhoWait() {
    auto waiting = connectTo(port_);
    waiting->write("GET /program.jpg HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    QVERIFY(waiting->waitForBytesWritten(5000));
    QTRY_VERIFY(desk().program().isWanted());
    QElapsedTimer timer;
    timer.start();
    helper_._interface->close();
    QVERIFY(timer.elapsed() < 1500);
    QCOMPARE(helper_._interface->open(nullptr, &port_), 0);
  }

  // A page asks six times a second, so a new connection for each would cost more than the pictures.
  void connectionIsKept() {
    auto client = connectTo(port_);
    for (int n = 0; n < 3; ++n) {
      client->write("GET /status.json HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
      QByteArray text;
      QVERIFY(readUntil(*client, text, "\"uptimeSeconds\""));
      QVERIFY(!text.contains("Connection: close"));
    }
    QCOMPARE(client->state(), QAbstractSocket::ConnectedState);
  }

  // Figures and log

  void metricsAreTheBoard() {
    StatusBoard::instance().publish(
        "engine", {{"frames", 1234}, {"open", true}, {"tick", QJsonObject{{"p50Ms", 5.0}}}});
    StatusBoard::instance().publish("buses", {{"pgm", "Media-1"}});
    StatusBoard::instance().publish("channels", {{"Media-0", QJsonObject()}, {"Media-1", QJsonObject()}});
    StatusBoard::instance().publish(
        "outputs",
        {{"recording", false},
         {"stream",
          QJsonObject{{"state", "Running"},
                      {"droppedFrames", 3},
                      {"roomSeconds", QJsonValue()},
                      {"targets",
                       QJsonArray{QJsonObject{{"name", "a \"b\" \\"}, {"state", "Up"}, {"kbps", 2500}}}}}}});
    const HttpReply reply = request(port_, "GET", "/metrics");
    for (const char* section : {"engine", "buses", "channels", "outputs"})
      StatusBoard::instance().publish(section, {});
    QCOMPARE(reply.status, 200);
    QVERIFY(reply.head.contains("Content-Type: text/plain; version=0.0.4; charset=utf-8"));
    const QByteArray text = "\n" + reply.body;
    for (const char* line :
         {"# TYPE korvia_frames_total counter", "korvia_frames_total 1234", "korvia_engine_open 1",
          "korvia_recording 0", "korvia_stage_seconds{stage=\"tick\",quantile=\"0.5\"} 0.005",
          "korvia_channel_on_program{channel=\"Media-0\"} 0",
          "korvia_channel_on_program{channel=\"Media-1\"} 1",
          "korvia_output_dropped_frames_total{output=\"stream\"} 3",
          "korvia_target_up{output=\"stream\",target=\"a \\\"b\\\" \\\\\"} 1",
          "korvia_target_bits_per_second{output=\"stream\",target=\"a \\\"b\\\" \\\\\"} 2500000"})
      QVERIFY2(text.contains("\n" + QByteArray(line) + "\n"), line);
    // What is not known is left out.
    QVERIFY(!text.contains("korvia_output_room_seconds{"));
    // Each figure is declared once, and each line is a figure or a declaration.
    QSet<QByteArray> names;
    const QList<QByteArray> lines = reply.body.trimmed().split('\n');
    static const QRegularExpression sample("^korvia_[a-z_]+(\\{[^\\n]*\\})? -?[0-9.e+-]+$");
    for (const QByteArray& line : lines) {
      if (line.startsWith("# TYPE ")) {
        QVERIFY2(!names.contains(line.split(' ')[2]), line.constData());
        names.insert(line.split(' ')[2]);
      } else if (!line.startsWith("# HELP ")) {
        QVERIFY2(sample.match(QString::fromUtf8(line)).hasMatch(), line.constData());
      }
    }
  }

  void logIsItsNewestLines() {
    for (int n = 0; n < 250; ++n)
      LogTail::instance().add("line " + QByteArray::number(n) + "\n");
    LogTail::instance().add(QByteArray(5000, 'x'));
    const QByteArray text = request(port_, "GET", "/log.txt").body;
    QCOMPARE(text.count('\n'), 200);
    QVERIFY(text.startsWith("line 51\nline 52\n"));
    QVERIFY(text.endsWith("line 249\n" + QByteArray(1000, 'x') + "\n"));
  }

  // Limits

  void addressHasSixteenConnections() {
    std::vector<std::unique_ptr<QTcpSocket>> streams;
    for (int n = 0; n < kPerAddress; ++n) {
      streams.push_back(openEvents("/events", "127.0.0.2"));
      QByteArray text;
      QVERIFY(readUntil(*streams.back(), text, "retry"));
    }
    // Streams are not given up for a newcomer of their address, which others do not notice.
    auto more = openEvents("/events", "127.0.0.2");
    QTRY_COMPARE(more->state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(request(port_, "GET", "/status.json").status, 200);
    for (const auto& stream : streams)
      QCOMPARE(stream->state(), QAbstractSocket::ConnectedState);
  }

  void slowClientsKeepNobodyWaiting() {
    std::vector<std::unique_ptr<QTcpSocket>> slow;
    for (int n = 0; n < 300; ++n) {
      slow.push_back(connectTo(port_, "127.0.0.2"));
      QVERIFY(slow.back());
      slow.back()->write("GET /status.json HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Slow: ");
      QVERIFY(slow.back()->waitForBytesWritten(5000));
    }
    for (int n = 0; n < 5; ++n) {
      QElapsedTimer timer;
      timer.start();
      QCOMPARE(request(port_, "GET", "/status.json").status, 200);
      QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    }
    const QJsonObject web = webSection();
    QVERIFY(web["connections"].toInt() <= kPerAddress + 1);
    QVERIFY(web["refusedConnections"].toInt() >= 300 - kPerAddress);
  }

  // The idle time-out of the library begins anew with each byte.
  void requestHasTenSeconds() {
    auto slow = connectTo(port_);
    slow->write("GET /status.json HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Slow: ");
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 20000 && slow->state() == QAbstractSocket::ConnectedState) {
      slow->write("x");
      slow->waitForReadyRead(200);
    }
    QVERIFY2(timer.elapsed() > 8000 && timer.elapsed() < 13000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(webSection()["expiredConnections"].toInt(), 1);
  }

  void streamMayLast() {
    auto viewer = openEvents("/events");
    QByteArray text;
    // Two beats: the first one may come early.
    const auto beats = [&text] { return text.split('\n').count(":"); };
    QTRY_VERIFY_WITH_TIMEOUT((readUntil(*viewer, text, "retry"), text += viewer->readAll(), beats() >= 3),
                             30000);
    QCOMPARE(viewer->state(), QAbstractSocket::ConnectedState);
  }

  // Who is allowed to ask

  void hostsOfThisMachine() {
    using korvia::isOwnHost;
    for (const WebReach reach : {WebReach::Loopback, WebReach::Network}) {
      QVERIFY(isOwnHost(nullptr, reach));
      QVERIFY(isOwnHost("127.0.0.1", reach));
      QVERIFY(isOwnHost("LocalHost:8800", reach));
      for (const char* host : {"evil.example", "127.0.0.1.evil.example", "localhost.evil.example:80",
                               "127.0.0.1:x", "", ":80", "[::1]:80", "127.1", "2130706433"})
        QVERIFY2(!isOwnHost(host, reach), host);
    }
    QVERIFY(!isOwnHost("192.168.1.5:8800", WebReach::Loopback));
    QVERIFY(isOwnHost("192.168.1.5:8800", WebReach::Network));
    const QByteArray name = QSysInfo::machineHostName().toUtf8();
    QVERIFY(name.isEmpty() || isOwnHost(name + ".local:8800", WebReach::Network));
    QVERIFY(!isOwnHost(name + ".local:8800", WebReach::Loopback));
  }

 private:
  static WebDesk& desk() { return WebDesk::instance(); }

  void takeCommands(WebVerdict verdict) {
    desk().setHandler([this, verdict](const WebCommand& command) {
      commands_.push_back(command);
      return verdict;
    });
  }

  HttpReply sendRaw(const QByteArray& text) const { return exchange(port_, text); }

  HttpReply post(const QByteArray& path, const QByteArray& token, const QByteArray& headers = {},
                 const QByteArray& body = {}) const {
    return sendRaw("POST " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\n" + headers +
                   (token.isEmpty() ? QByteArray() : "Authorization: Bearer " + token + "\r\n") +
                   "Content-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" +
                   body);
  }

  std::unique_ptr<QTcpSocket> openEvents(const QByteArray& path, const char* from = "127.0.0.1") const {
    auto socket = connectTo(port_, from);
    if (socket) {
      socket->write("GET " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
      socket->waitForBytesWritten(5000);
    }
    return socket;
  }

  static QByteArray numberOf(const HttpReply& reply) {
    const QByteArray name = "X-Korvia-Picture: ";
    const int at = reply.head.indexOf(name);
    return at < 0 ? QByteArray() : reply.head.mid(at + name.size()).split('\r')[0];
  }

  QJsonObject webSection() const {
    const QJsonObject status = QJsonDocument::fromJson(request(port_, "GET", "/status.json").body).object();
    return status["sections"].toObject()["webServer"].toObject();
  }

  CKorviaWebServerHelper helper_;
  int port_ = 0;
  std::vector<WebCommand> commands_;
};

QTEST_GUILESS_MAIN(WebRequestsTest)
#include "tst_web_requests.moc"

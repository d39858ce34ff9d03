// Who may publish to the income server: publishers are real encoders, the server is a real nginx.
#include <signal.h>

#include <QHostAddress>
#include <QJsonArray>
#include <QNetworkInterface>
#include <QTcpSocket>

#include "IncomeRig.h"
#include "PublishRules.h"
#include "income/PublishGate.h"
#include "support/LogLines.h"

using korvia::PublishGate;
using korvia::PublishRules;
using korvia::test::figures;
using korvia::test::IncomeRig;
using korvia::test::LogLines;
using korvia::test::publishing;

namespace {

QJsonObject publisherOf(const QString& app, const QString& name) {
  const QJsonArray rows = figures()["publishers"].toArray();
  for (const auto& row : rows) {
    if (row["app"] == app && row["name"] == name)
      return row.toObject();
  }
  return {};
}

/// An encoder that publishes to the URL.
class Encoder {
 public:
  explicit Encoder(const QString& url, int seconds = 60) {
    process_.start("ffmpeg", publishing(url, seconds));
  }
  ~Encoder() {
    signal(SIGCONT);
    process_.kill();
    process_.waitForFinished();
  }
  void signal(int number) {
    if (process_.state() == QProcess::Running)
      ::kill(static_cast<pid_t>(process_.processId()), number);
  }
  bool isRunning() const { return process_.state() == QProcess::Running; }
  /// It ends by itself only when the server refuses or drops it.
  bool isRefused() { return process_.waitForFinished(10'000) && process_.exitCode() != 0; }

 private:
  QProcess process_;
};

/// An address of this machine that is not the loopback; empty when there is none.
QString otherAddress() {
  for (const QHostAddress& address : QNetworkInterface::allAddresses()) {
    if (address.protocol() == QAbstractSocket::IPv4Protocol && !address.isLoopback())
      return address.toString();
  }
  return {};
}

}  // namespace

class PublishGateTest : public QObject, private IncomeRig {
  Q_OBJECT

 private slots:
  void init() {
    QVERIFY(setUp());
    log_ = std::make_unique<LogLines>();
  }
  void cleanup() {
    tearDown();
    log_.reset();
  }

  void namesOfTheRecordsMayPublish() {
    allow({"/income/0", "/income/cam_A-1"});
    QCOMPARE(open(), 0);
    Encoder encoder(url("income/cam_A-1"));
    QTRY_VERIFY_WITH_TIMEOUT(!publisherOf("income", "cam_A-1").isEmpty(), 10'000);
    QTRY_VERIFY_WITH_TIMEOUT(publisherOf("income", "cam_A-1")["kbps"].toInt() > 0, 10'000);
    const QJsonObject row = publisherOf("income", "cam_A-1");
    QCOMPARE(row["addr"].toString(), QString("127.0.0.1"));
    QCOMPARE(row["players"].toInt(-1), 0);
    QVERIFY(encoder.isRunning());
    QCOMPARE(figures()["refused"].toInt(-1), 0);
  }

  void wrongNameIsRefused_data() {
    QTest::addColumn<QString>("stream");
    QTest::newRow("another name") << "income/cam2";
    QTest::newRow("longer") << "income/cam10";
    QTest::newRow("other case") << "income/CAM1";
    QTest::newRow("argument that names another") << "income/cam2?name=cam1";
    QTest::newRow("argument that names all")
        << "income/cam2?app=income&name=cam1&addr=127.0.0.1&call=publish";
    QTest::newRow("end of a field") << "income/cam2%26name=cam1";
    QTest::newRow("application of the program") << "live/cam1";
  }
  void wrongNameIsRefused() {
    QFETCH(QString, stream);
    allow({"/income/cam1"});
    QCOMPARE(open(), 0);
    Encoder encoder(url(stream));
    QVERIFY(encoder.isRefused());
    QTRY_COMPARE(figures()["refused"].toInt(), 1);
    QCOMPARE(LogLines::count("refused to publish"), 1);
  }

  void argumentsDoNotOverwriteTheName() {
    allow({"/income/cam1"});
    QCOMPARE(open(), 0);
    Encoder encoder(url("income/cam1?name=cam2&app=live"));
    QTRY_VERIFY_WITH_TIMEOUT(!publisherOf("income", "cam1").isEmpty(), 10'000);
    QVERIFY(publisherOf("live", "cam2").isEmpty());
  }

  void nobodyPublishesBeforeTheConsoleHandsItsListOver() {
    QCOMPARE(open(), 0);
    Encoder early(url("income/0"));
    QVERIFY(early.isRefused());
    allow({"/income/0"});
    Encoder encoder(url("income/0"));
    QTRY_VERIFY_WITH_TIMEOUT(!publisherOf("income", "0").isEmpty(), 10'000);
  }

  void keyIsAsked_data() {
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("missing") << "" << false;
    QTest::newRow("wrong") << "?key=letmein" << false;
    QTest::newRow("part") << "?key=s3cret%+" << false;
    QTest::newRow("second one") << "?key=x&key=s3cret%+!" << false;
    QTest::newRow("right") << "?key=s3cret%+!" << true;
    QTest::newRow("right among others") << "?x=1&key=s3cret%+!" << true;
    QTest::newRow("encoded") << "?key=s3cret%25%2B!" << true;
  }
  void keyIsAsked() {
    QFETCH(QString, arguments);
    QFETCH(bool, allowed);
    qputenv("KORVIA_PUBLISH_KEY", "s3cret%+!");
    allow({"/income/cam1"});
    QCOMPARE(open(), 0);
    Encoder encoder(url("income/cam1" + arguments));
    if (allowed)
      QTRY_VERIFY_WITH_TIMEOUT(!publisherOf("income", "cam1").isEmpty(), 10'000);
    else
      QVERIFY(encoder.isRefused());
  }

  void keyIsNeverTold() {
    qputenv("KORVIA_PUBLISH_KEY", "s3cret");
    allow({"/income/cam1"});
    QCOMPARE(open(), 0);
    // The key as a part of the name, as an encoder with a single field may send it.
    Encoder wrong(url("income/cam1&key=s3cret"));
    QVERIFY(wrong.isRefused());
    QTRY_COMPARE(LogLines::count("refused to publish income/cam1&key=***"), 1);
    Encoder encoder(url("income/cam1?key=s3cret"));
    QTRY_VERIFY_WITH_TIMEOUT(!publisherOf("income", "cam1").isEmpty(), 10'000);
    QCOMPARE(LogLines::count("s3cret"), 0);
    QVERIFY(!QJsonDocument(figures()).toJson().contains("s3cret"));
    QFile environment(QString("/proc/%1/environ").arg(figures()["processId"].toInt()));
    QVERIFY(environment.open(QIODevice::ReadOnly));
    QVERIFY(!environment.readAll().contains("KORVIA_PUBLISH_KEY"));
  }

  void secondPublisherOfANameIsRefused() {
    allow({"/income/cam1"});
    QCOMPARE(open(), 0);
    Encoder first(url("income/cam1"));
    QTRY_VERIFY_WITH_TIMEOUT(publisherOf("income", "cam1")["kbps"].toInt() > 0, 10'000);
    Encoder second(url("income/cam1"));
    QVERIFY(second.isRefused());
    QVERIFY(first.isRunning());
    QCOMPARE(LogLines::count("refused to publish income/cam1 from 127.0.0.1 : it is published already by "
                             "127.0.0.1"),
             1);
  }

  void ofTwoAtTheSameMomentAtMostOneGetsIn() {
    allow({"/income/cam1"});
    QCOMPARE(open(), 0);
    Encoder first(url("income/cam1"));
    Encoder second(url("income/cam1"));
    QTRY_VERIFY_WITH_TIMEOUT(publisherOf("income", "cam1")["kbps"].toInt() > 0, 10'000);
    QTRY_VERIFY_WITH_TIMEOUT(first.isRunning() != second.isRunning(), 10'000);
    QCOMPARE(figures()["publishers"].toArray().size(), 1);
  }

  void publisherThatComesBackReplacesItsGhost() {
    allow({"/income/cam1"});
    QCOMPARE(open(), 0);
    Encoder ghost(url("income/cam1"));
    QTRY_VERIFY_WITH_TIMEOUT(publisherOf("income", "cam1")["kbps"].toInt() > 0, 10'000);
    ghost.signal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    Encoder encoder(url("income/cam1"));
    QTRY_COMPARE_WITH_TIMEOUT(LogLines::count("income/cam1 : 127.0.0.1 sends nothing"), 1, 4000);
    QTRY_VERIFY_WITH_TIMEOUT(publisherOf("income", "cam1")["seconds"].toInt(99) < 3, 4000);
    QVERIFY2(timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));
    QTRY_VERIFY_WITH_TIMEOUT(publisherOf("income", "cam1")["kbps"].toInt() > 0, 4000);
    QVERIFY(encoder.isRunning());
    ghost.signal(SIGCONT);
    QVERIFY(ghost.isRefused());
    QVERIFY(encoder.isRunning());
  }

  void programIsPublishedWithTheSecretAlone() {
    QCOMPARE(helper_._interface->publishSecret(), QString());
    QCOMPARE(open(), 0);
    const QString secret = helper_._interface->publishSecret();
    QVERIFY(secret.size() >= 22);
    for (const QString& arguments : {QString(), QString("?secret=x"), "?secret=" + secret.left(10)}) {
      Encoder stranger(url("live/output_0" + arguments));
      QVERIFY(stranger.isRefused());
    }
    Encoder program(url("live/output_0?secret=" + secret));
    QProcess viewer;
    viewer.start("ffprobe", {"-v", "error", "-rw_timeout", "8000000", "-show_entries", "stream=codec_name",
                             "-of", "default=nk=1:nw=1", url("live/output_0")});
    QVERIFY(viewer.waitForFinished(15'000));
    QCOMPARE(viewer.readAllStandardOutput().trimmed(), QByteArray("flv1"));
    QTRY_VERIFY(!publisherOf("live", "output_0").isEmpty());
    QVERIFY(!QJsonDocument(figures()).toJson().contains(secret.toUtf8()));
    QCOMPARE(LogLines::count(secret), 0);
    helper_._interface->close();
    QCOMPARE(open(), 0);
    QVERIFY(helper_._interface->publishSecret() != secret);
  }

  void nobodyElsePublishesTheProgram() {
    const QString address = otherAddress();
    if (address.isEmpty())
      QSKIP("the loopback is the only interface");
    qputenv("KORVIA_LISTEN", "0.0.0.0");
    QCOMPARE(open(), 0);
    Encoder encoder(url("live/output_0?secret=" + helper_._interface->publishSecret(), address));
    QVERIFY(encoder.isRefused());
  }

  void withoutTheGateNobodyPublishes() {
    allow({"/income/cam1"});
    QCOMPARE(open(), 0);
    const QDir cache(root_->filePath("cache"));
    QVERIFY(QFile::remove(cache.filePath(cache.entryList({"income-*"}).value(0) + "/gate.sock")));
    Encoder encoder(url("income/cam1"));
    QVERIFY(encoder.isRefused());
  }

  void idleClientsKeepNoPublisherOut() {
    allow({"/income/cam1"});
    QCOMPARE(open(), 0);
    constexpr int kClients = 200;
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (int count = 0; count < kClients; ++count) {
      clients.push_back(std::make_unique<QTcpSocket>());
      clients.back()->connectToHost("127.0.0.1", static_cast<quint16>(helper_._interface->rtmpPort()));
      QVERIFY(clients.back()->waitForConnected(2000));
    }
    Encoder encoder(url("income/cam1"));
    QTRY_VERIFY_WITH_TIMEOUT(!publisherOf("income", "cam1").isEmpty(), 10'000);
  }

  void gateStandsAfterARestart() {
    allow({"/income/cam1"});
    QCOMPARE(open(), 0);
    QCOMPARE(::kill(static_cast<pid_t>(figures()["processId"].toInt()), SIGKILL), 0);
    QTRY_VERIFY_WITH_TIMEOUT(figures()["restarts"].toInt() == 1 && helper_._interface->isRunning(), 10'000);
    Encoder stranger(url("income/cam2"));
    QVERIFY(stranger.isRefused());
    Encoder encoder(url("income/cam1"));
    QTRY_VERIFY_WITH_TIMEOUT(!publisherOf("income", "cam1").isEmpty(), 10'000);
  }

  // A few in a row are all told, because somebody tries things out; of a flood only some lines a second are.
  void refusalsFillNoLog() {
    const QTemporaryDir folder;
    PublishGate gate(folder.path(), {"secret", "key"});
    allow({"/income/cam1"});
    const auto isRefused = [&gate](const QByteArray& name) {
      return !gate.allows("app=income&addr=192.0.2.1&call=publish&name=" + name);
    };
    QVERIFY(isRefused("cam1"));
    QVERIFY(isRefused("other"));
    QCOMPARE(LogLines::count("the key is missing"), 1);
    QCOMPARE(LogLines::count("no channel has that name"), 1);
    QElapsedTimer timer;
    timer.start();
    for (int count = 0; count < 1000; ++count)
      QVERIFY(isRefused("other"));
    QCOMPARE(gate.refused(), 1002);
    QVERIFY(LogLines::count("refused to publish") <= 5 * (1 + timer.elapsed() / 1000));
  }

 private:
  static void allow(const QStringList& incomePaths) { PublishRules::instance().setIncomePaths(incomePaths); }

  std::unique_ptr<LogLines> log_;
};

QTEST_GUILESS_MAIN(PublishGateTest)
#include "tst_publish_gate.moc"

// The operator's page in a browser, on a phone and on a desk, with a running program behind it. Each test
// goes on from where the last one left off.
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>
#include <csignal>
#include <memory>

#include "Desk.h"
#include "support/http_exchange.h"

using namespace korvia::test;

namespace {

constexpr int kMedia0 = 0x10;
constexpr int kMedia1 = 0x11;
constexpr int kPVM = 0x1001;
constexpr int kPGM = 0x1002;

constexpr int kDriverLimitMs = 90000;

}  // namespace

class TestOperatorPage : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void init();
  void tokenIsNotInTheLog();
  void takeByItsButtonIsOnProgram_data();
  void takeByItsButtonIsOnProgram();
  void lockedPageOnlyShows();
  void recordsByItsButton();
  void streamWithoutATargetSaysWhy();
  void pageSaysWhenTheConsoleIsGone();

 private:
  int waitForNew(const BlackBoxMatch& match) { return korvia_->blackBox().waitFor(match, from_, 15000); }
  QString program() { return korvia_->status()["buses"].toObject()["pgm"].toString(); }

  /// Runs the steps in a browser of that width. What it saw, empty when something failed.
  QJsonObject browse(const QString& address, const QSize& size, const QStringList& steps) {
    QProcess driver;
    driver.start(QStringLiteral("python3"),
                 QStringList{KORVIA_PAGE_DRIVER, address, "--width", QString::number(size.width()),
                             "--height", QString::number(size.height()), "--timeout", "30", "--screenshot",
                             korvia_->in(QString("page-%1.png").arg(size.width()))} +
                     steps);
    if (!driver.waitForFinished(kDriverLimitMs)) {
      driver.kill();
      driver.waitForFinished();
    }
    const QByteArray answer = driver.readAllStandardOutput();
    if (driver.exitStatus() == QProcess::NormalExit && driver.exitCode() == 0)
      return QJsonDocument::fromJson(answer).object()["seen"].toObject();
    qWarning("%s\n%s", answer.constData(), driver.readAllStandardError().constData());
    return {};
  }

  VirtualDisplay display_;
  std::unique_ptr<KorviaProcess> korvia_;
  QString address_;
  int from_ = 0;  // first line of the black box that the running test has caused
};

void TestOperatorPage::initTestCase() {
  QVERIFY(display_.start(kDeskSize));
  korvia_ = std::make_unique<KorviaProcess>(display_);
  QVERIFY(korvia_->startShow({"--open", "1=" KORVIA_DEMO_FOLDER "/demo2.mp4"}));
  QTRY_VERIFY(!(address_ = korvia_->pageAddress()).isEmpty());
  QCOMPARE(address_.section('/', 0, 2), QString("http://127.0.0.1:%1").arg(korvia_->webPort()));
}

void TestOperatorPage::init() {
  if (korvia_->isRunning())
    from_ = korvia_->blackBox().lines().size();
}

void TestOperatorPage::tokenIsNotInTheLog() {
  const QByteArray token = address_.section('#', 1).toLatin1();
  QCOMPARE(token.size(), 22);
  const HttpReply log = request(korvia_->webPort(), "GET", "/log.txt");
  QVERIFY(log.body.contains("web server : http://"));
  QVERIFY(!log.body.contains(token));
  QFile stored(korvia_->in("home/.config/korvia/korvia.log"));
  QVERIFY(stored.open(QIODevice::ReadOnly));
  const QByteArray lines = stored.readAll();
  QVERIFY(lines.contains("web server : http://"));
  QVERIFY(!lines.contains(token));
}

void TestOperatorPage::takeByItsButtonIsOnProgram_data() {
  QTest::addColumn<QSize>("size");
  QTest::addColumn<int>("channel");
  QTest::newRow("phone") << QSize(360, 740) << kMedia1;
  QTest::newRow("desk") << QSize(1280, 800) << kMedia0;
}

void TestOperatorPage::takeByItsButtonIsOnProgram() {
  QFETCH(QSize, size);
  QFETCH(int, channel);
  const QString tile = QString(".tile[data-channel=\"%1\"]").arg(channel);
  const QString title = QString("Media-%1").arg(channel - kMedia0);
  const QJsonObject seen = browse(
      address_, size,
      {"--wait-attribute", "#link@data-state=up", "--click", tile, "--wait-text", "#preview-name=" + title,
       "--click", "#take-0", "--wait-text", "#program-name=" + title, "--wait-picture"});
  QVERIFY(!seen.isEmpty());
  QCOMPARE(seen["picture"].toArray(), (QJsonArray{640, 360}));
  QCOMPARE(seen["address"].toString().contains('#'), false);
  // Nothing is wider than the screen.
  QVERIFY(seen["contentWidth"].toInt() <= size.width());
  const int selected = waitForNew(line("post", "ShowEventSelectChannel", {kPVM, channel}));
  const int taken = waitForNew(line("post", "ShowEventTake", {channel}));
  QVERIFY(selected >= 0 && taken > selected);
  QVERIFY(waitForNew(line("result", "ShowEventSelectChannel", {kPGM, channel})) > taken);
  QTRY_COMPARE_WITH_TIMEOUT(program(), title, 5000);
}

void TestOperatorPage::lockedPageOnlyShows() {
  const QString before = program();
  const QJsonObject seen =
      browse(address_.section('#', 0, 0), QSize(360, 740),
             {"--wait-attribute", "#link@data-state=up", "--click", "#cut", "--wait-text",
              "#token-title=Token", "--wait-attribute", "#token-dialog@open="});
  QVERIFY(!seen.isEmpty());
  QVERIFY(seen["locked"].toBool());
  QCOMPARE(program(), before);
  QCOMPARE(korvia_->blackBox().select(line("post", "ShowEventSelectChannel"), from_).size(), 0);
}

void TestOperatorPage::recordsByItsButton() {
  const QJsonObject seen =
      browse(address_, QSize(360, 740),
             {"--wait-attribute", "#link@data-state=up", "--click", "#record", "--wait-attribute",
              "#record@aria-pressed=true", "--wait-text", "#outputs=running", "--click", "#record",
              "--wait-text", "#record=again", "--pause", "0.6", "--click", "#record", "--wait-attribute",
              "#record@aria-pressed=false"});
  QVERIFY(!seen.isEmpty());
  QVERIFY(waitForNew(line("post", "ShowEventStartOutput")) >= 0);
  QVERIFY(waitForNew(line("result", "ShowEventStopOutput")) >= 0);
  const QFileInfo recording(korvia_->waitForFile(korvia_->in("d"), "*.mp4"));
  QVERIFY(recording.size() > 10000);
}

void TestOperatorPage::streamWithoutATargetSaysWhy() {
  const QJsonObject seen =
      browse(address_, QSize(360, 740),
             {"--wait-attribute", "#link@data-state=up", "--click", "#stream", "--wait-text",
              "#message=The stream has failed: no target", "--wait-attribute", "#stream@aria-pressed=false"});
  QVERIFY(!seen.isEmpty());
}

void TestOperatorPage::pageSaysWhenTheConsoleIsGone() {
  const auto viewers = [this] { return korvia_->status()["webServer"].toObject()["eventViewers"].toInt(-1); };
  // The browser of the test before is gone.
  QTRY_COMPARE_WITH_TIMEOUT(viewers(), 0, 10000);
  QProcess driver;
  driver.start("python3", {KORVIA_PAGE_DRIVER, address_, "--width", "360", "--height", "740", "--timeout",
                           "40", "--allow", "ERR_", "--allow", "503", "--wait-text", "#link=ended"});
  QTRY_COMPARE_WITH_TIMEOUT(viewers(), 1, kDriverLimitMs);
  korvia_->sendSignal(SIGTERM);
  QVERIFY(korvia_->waitForExit());
  QVERIFY2(korvia_->trouble().isEmpty(), qPrintable(korvia_->trouble()));
  QVERIFY(driver.waitForFinished(kDriverLimitMs));
  const QByteArray text = driver.readAllStandardOutput();
  QVERIFY2(driver.exitCode() == 0, text.constData());
  const QJsonObject answer = QJsonDocument::fromJson(text).object();
  QVERIFY(answer["seen"].toObject()["stale"].toBool());
}

QTEST_GUILESS_MAIN(TestOperatorPage)
#include "tst_operator_page.moc"

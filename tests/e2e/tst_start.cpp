// How the program comes up, what it shows and serves, and how it refuses to start.
#include <QTcpServer>
#include <QtTest>
#include <csignal>

#include "Desk.h"
#include "support/PictureStats.h"
#include "support/http_exchange.h"

using namespace korvia::test;

class TestStart : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void opensTheEngineAndShowsTheFilm();
  void opensWhatTheCommandLineNames();
  void servesItsStatusWhenThePortIsTaken();
  void runsWithoutTheIncomeServer();
  void endsTheIncomeServerWithItself();
  void runsWithTheSilentEngine();
  void refusesAWrongOption();
  void saysWhichModuleIsMissing();

 private:
  VirtualDisplay display_;
};

void TestStart::initTestCase() {
  QVERIFY(display_.start(kDeskSize));
}

void TestStart::opensTheEngineAndShowsTheFilm() {
  KorviaProcess korvia(display_);
  Desk desk(display_, korvia);
  QVERIFY2(korvia.startShow({"--exit-after", "9", "--screenshot", korvia.in("shot.png")}),
           qPrintable(korvia.log()));
  QVERIFY(korvia.waitForLog("startup spend time : "));
  const int spentMs = korvia.log().section("startup spend time : ", 1).section('\n', 0, 0).toInt();
  QVERIFY2(spentMs > 1000 && spentMs < 4000, qPrintable(QString::number(spentMs)));

  const int film = korvia.blackBox().waitFor(
      [](const BlackBoxLine& opened) { return opened.name == "openSource" && opened.object == 1; });
  QVERIFY(film >= 0);
  QVERIFY(korvia.blackBox().lines()[film].args[0].toObject()["moviePath"].toString().endsWith("demo.mp4"));

  QList<QRect> pictures;
  for (const quint64 window : {desk.preview(), desk.program(), desk.strip(0)}) {
    QVERIFY(desk.showsPicture(window));
    QVERIFY(desk.isMoving(window));
    pictures << display_.geometryOf(window);
  }

  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.trouble(), QString());
  QCOMPARE(korvia.blackBox().lines().last().name, QStringLiteral("ShowEventClose"));
  const QImage shot(korvia.in("shot.png"));
  QCOMPARE(shot.size(), kDeskSize);
  for (const QRect& picture : pictures) {
    const PictureStats stats = statsOf(shot.copy(picture));
    QVERIFY2(stats.mean > 12 && stats.deviation > 12, qPrintable(QString::number(stats.mean)));
  }
}

void TestStart::opensWhatTheCommandLineNames() {
  KorviaProcess korvia(display_);
  Desk desk(display_, korvia);
  QImage picture(64, 36, QImage::Format_RGB32);
  picture.fill(QColor(200, 40, 40));
  QVERIFY(picture.save(korvia.in("red.png")));
  QVERIFY(korvia.startShow(
      {"--open", "1=" KORVIA_DEMO_FOLDER "/demo2.mp4", "--open", "2=" + korvia.in("red.png")}));
  QVERIFY(desk.isMoving(desk.strip(1)));
  QTRY_VERIFY_WITH_TIMEOUT(qAbs(display_.grabWindow(desk.strip(2)).pixelColor(100, 76).red() - 200) < 8,
                           10000);
  const QColor red = display_.grabWindow(desk.strip(2)).pixelColor(100, 76);
  QVERIFY2(qAbs(red.green() - 40) < 8 && qAbs(red.blue() - 40) < 8, qPrintable(red.name()));
  korvia.sendSignal(SIGTERM);
  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.trouble(), QString());
}

void TestStart::servesItsStatusWhenThePortIsTaken() {
  // Taken by this or by any other program, it is taken.
  QTcpServer other;
  other.listen(QHostAddress::LocalHost, 8800);
  KorviaProcess korvia(display_);
  Desk desk(display_, korvia);
  QVERIFY(korvia.startShow());
  QVERIFY2(korvia.webPort() > 8800, qPrintable(korvia.log()));
  QVERIFY(desk.runsOn(50));
  QTRY_COMPARE_WITH_TIMEOUT(korvia.status()["channels"].toObject()["Media-0"].toObject()["state"].toString(),
                            QStringLiteral("Playing"), 10000);

  const QJsonObject status = korvia.status();
  const QJsonObject buses = status["buses"].toObject();
  QCOMPARE(buses["pvm"].toString(), QStringLiteral("Media-0"));
  QCOMPARE(buses["pgm"].toString(), QStringLiteral("Media-0"));
  QCOMPARE(buses["switchPosition"].toDouble(-1), 0.0);
  QCOMPARE(status["channels"].toObject().keys(), QStringList({"Media-0", "Media-1", "Media-2", "Stage-0"}));
  const QJsonObject channel = status["channels"].toObject()["Media-0"].toObject();
  QCOMPARE(channel["file"].toString(), QStringLiteral("demo.mp4"));
  QCOMPARE(channel["duration"].toString(), QStringLiteral("00:00:20"));
  QCOMPARE(status["channels"].toObject()["Media-1"].toObject()["inUse"].toBool(true), false);
  QCOMPARE(status["engine"].toObject()["open"].toBool(), true);
  QVERIFY(qAbs(status["engine"].toObject()["fps"].toDouble() - 25) < 1);

  const HttpReply page = request(korvia.webPort(), "GET", "/");
  QCOMPARE(page.status, 200);
  QVERIFY(page.body.contains("status.json"));
  korvia.sendSignal(SIGTERM);
  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.trouble(), QString());
}

void TestStart::runsWithoutTheIncomeServer() {
  KorviaProcess korvia(display_);
  Desk desk(display_, korvia);
  korvia.setEnvironment("KORVIA_NGINX", "/nonexistent");
  QVERIFY(korvia.startShow());
  QVERIFY2(korvia.waitForLog("failed to open rtmp server"), qPrintable(korvia.log()));
  QVERIFY(desk.runsOn(25));
  QVERIFY(korvia.children("nginx").isEmpty());
  korvia.sendSignal(SIGTERM);
  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.trouble(), QString());
}

void TestStart::endsTheIncomeServerWithItself() {
  KorviaProcess korvia(display_);
  QVERIFY(korvia.startShow());
  QTRY_VERIFY_WITH_TIMEOUT(!korvia.children("nginx").isEmpty(), 10000);
  const qint64 child = korvia.children("nginx").first();
  korvia.sendSignal(SIGTERM);
  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.trouble(), QString());
  QVERIFY(!QFile::exists(QString("/proc/%1").arg(child)));
}

void TestStart::runsWithTheSilentEngine() {
  KorviaProcess korvia(display_);
  QVERIFY(korvia.startShow({"--engine", "silent", "--exit-after", "3"}));
  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.trouble(), QString());
}

void TestStart::refusesAWrongOption() {
  KorviaProcess korvia(display_);
  QVERIFY(korvia.start({"--open", "9=film.mp4"}));
  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.troubleUnless(2), QString());
  QVERIFY2(korvia.log().contains("korvia: --open: there is no media channel 9"), qPrintable(korvia.log()));
  QVERIFY(!QFile::exists(korvia.in("root")));
}

void TestStart::saysWhichModuleIsMissing() {
  KorviaProcess korvia(display_);
  const QString bin = QCoreApplication::applicationDirPath();
  QVERIFY(QDir().mkpath(korvia.in("bin")));
  for (const QString file : {"korvia", "libKorviaSarnhawk.so", "libKorviaCommonModule.so"})
    QVERIFY(QFile::copy(bin + '/' + file, korvia.in("bin/" + file)));
  korvia.setProgram(korvia.in("bin/korvia"));
  QVERIFY(korvia.start());
  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.troubleUnless(1), QString());
  QVERIFY2(korvia.log().contains("korvia: failed to load the console") &&
               korvia.log().contains("libKorviaShowModule.so"),
           qPrintable(korvia.log()));
}

QTEST_GUILESS_MAIN(TestStart)
#include "tst_start.moc"

// What stands beside the buttons of recording and stream while they run.
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaShowEvents.h"
#include "output/OutputStatus.h"
#include "output/TargetText.h"

namespace {

using State = KorviaShowTargetState;

tagKorviaShowTargetReport target(const QString& name, State state, int upSeconds = 0, int retrySeconds = 0,
                                 const QString& reason = {}) {
  tagKorviaShowTargetReport report;
  report.name = name;
  report.state = state;
  report.upSeconds = upSeconds;
  report.retrySeconds = retrySeconds;
  report.reason = reason;
  return report;
}

tagKorviaShowOutputReport running(const QList<tagKorviaShowTargetReport>& targets = {}) {
  tagKorviaShowOutputReport report;
  report.state = KorviaShowOutputState::Running;
  report.targets = targets;
  return report;
}

class OpenDesk : public ConsoleDesk {
 public:
  OpenDesk() {
    isOpen = start();
    show.answer(ShowEventStartOutput, [](const ScriptedShow::Event& event) {
      return std::pair<QVariant, QVariant>(event.args[0], event.args[1]);
    });
    record().state = KorviaShowOutputState::Idle;
  }

  tagKorviaShowOutputReport& record() { return show.figures.outputs[OutputSlotRecord]; }
  tagKorviaShowOutputReport& stream() { return show.figures.outputs[OutputSlotStream]; }
  QLabel* recordLabel() const { return child<QLabel>("_recordStatusLabel"); }
  QLabel* streamLabel() const { return child<QLabel>("_streamStatusLabel"); }
  void tick() {
    console->onWorkTimer();
    settle();
  }

  bool isOpen = false;
};

}  // namespace

class OutputStatusTest : public QObject {
  Q_OBJECT

 private slots:
  void labelsAreHiddenWhileNothingRuns_data() {
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("idle") << int(KorviaShowOutputState::Idle) << false;
    QTest::newRow("starting") << int(KorviaShowOutputState::Starting) << true;
    QTest::newRow("running") << int(KorviaShowOutputState::Running) << true;
    QTest::newRow("failed") << int(KorviaShowOutputState::Failed) << false;
    QTest::newRow("finished") << int(KorviaShowOutputState::Finished) << false;
  }
  void labelsAreHiddenWhileNothingRuns() {
    QFETCH(int, state);
    QFETCH(bool, isShown);
    OpenDesk desk;
    QVERIFY(!desk.recordLabel()->isVisible());
    QVERIFY(!desk.streamLabel()->isVisible());
    desk.record() = running();
    desk.stream() = running();
    desk.tick();
    desk.record().state = static_cast<KorviaShowOutputState>(state);
    desk.stream().state = static_cast<KorviaShowOutputState>(state);
    desk.tick();
    QCOMPARE(desk.recordLabel()->isVisible(), isShown);
    QCOMPARE(desk.streamLabel()->isVisible(), isShown);
  }

  void reportOfTheOutputBeforeIsNotShown() {
    OpenDesk desk;
    // The answer lies in the event queue, so to the console the engine has not come to the start yet.
    desk.child<QPushButton>("_startRecordPushButton")->click();
    desk.record() = running();
    desk.console->onWorkTimer();
    QVERIFY(!desk.recordLabel()->isVisible());
    desk.settle();
    desk.tick();
    QVERIFY(desk.recordLabel()->isVisible());
  }

  void recordingTellsTimeSizeRoomAndVerification() {
    tagKorviaShowOutputReport report = running();
    report.writtenMs = 750'999;
    report.writtenBytes = 1'234'567'890;
    QCOMPARE(OutputStatus::recordText(report), QString("00:12:30   1.2 GB"));
    report.roomSeconds = 5'279;
    QCOMPARE(OutputStatus::recordText(report), QString("00:12:30   1.2 GB\n87 min free"));
    report.verifiedMs = 740'000;
    QCOMPARE(OutputStatus::recordText(report),
             QString("00:12:30   1.2 GB\n87 min free, verified to 00:12:20"));
    report.roomSeconds = -1;
    QCOMPARE(OutputStatus::recordText(report), QString("00:12:30   1.2 GB\nverified to 00:12:20"));
    report.writtenMs = 360'000'000;
    QVERIFY(OutputStatus::recordText(report).startsWith("100:00:00 "));
  }

  void littleRoomIsMarked() {
    OpenDesk desk;
    desk.record() = running();
    desk.record().fileName = "/records/evening.mp4";
    desk.record().roomSeconds = 600;
    desk.tick();
    QVERIFY(!desk.recordLabel()->property("alert").toBool());
    const QColor usual = desk.recordLabel()->palette().color(QPalette::WindowText);
    desk.record().roomSeconds = 599;
    desk.tick();
    QVERIFY(desk.recordLabel()->property("alert").toBool());
    QVERIFY(desk.recordLabel()->palette().color(QPalette::WindowText) != usual);
    QVERIFY(desk.recordLabel()->toolTip().endsWith("\n/records/evening.mp4"));
    desk.record().roomSeconds = -1;
    desk.tick();
    QVERIFY(!desk.recordLabel()->property("alert").toBool());
    QCOMPARE(desk.recordLabel()->palette().color(QPalette::WindowText), usual);
  }

  void singleTargetIsToldWithoutItsName_data() {
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("upSeconds");
    QTest::addColumn<int>("retrySeconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("connecting") << int(State::Connecting) << 0 << 0 << "connecting";
    QTest::newRow("up") << int(State::Up) << 3'661 << 0 << "up for 01:01:01";
    QTest::newRow("lost") << int(State::Lost) << 0 << 7 << "lost, retry in 7 s";
    QTest::newRow("lost, trying") << int(State::Lost) << 0 << 0 << "lost, retrying";
    QTest::newRow("failed") << int(State::Failed) << 0 << 0 << "failed";
    QTest::newRow("finished") << int(State::Finished) << 0 << 0 << "ended";
  }
  void singleTargetIsToldWithoutItsName() {
    QFETCH(int, state);
    QFETCH(int, upSeconds);
    QFETCH(int, retrySeconds);
    QFETCH(QString, text);
    const auto report = running({target("HTTP", static_cast<State>(state), upSeconds, retrySeconds)});
    QCOMPARE(OutputStatus::streamText(report), text);
  }

  void streamWithoutTargetsTellsItsOwnState() {
    tagKorviaShowOutputReport report = running();
    QCOMPARE(OutputStatus::streamText(report), QString("up"));
    report.state = KorviaShowOutputState::Starting;
    QCOMPARE(OutputStatus::streamText(report), QString("connecting"));
    QCOMPARE(OutputStatus::streamDetails(report), QString("connecting"));
  }

  void worstTargetComesFirst() {
    const auto report =
        running({target("UDP", State::Up, 90), target("HLS", State::Finished), target("HTTP", State::Up, 30),
                 target("RTMP Push - 1", State::Connecting), target("RTMP Push - 0", State::Lost, 0, 4),
                 target("RTMP Local", State::Failed)});
    QCOMPARE(OutputStatus::streamText(report),
             QString("RTMP Local: failed | RTMP Push - 0: lost, retry in 4 s | RTMP Push - 1: connecting | "
                     "HTTP: up for 00:00:30 | UDP: up for 00:01:30 | HLS: ended"));
  }

  void toolTipNamesAllTargetsWithReasonAndBitrate() {
    OpenDesk desk;
    auto up = target("HTTP", State::Up, 30);
    up.bitrate = 4123.6F;
    desk.stream() = running({up, target("RTMP Push - 0", State::Lost, 0, 4, "connection refused")});
    desk.tick();
    QCOMPARE(desk.streamLabel()->toolTip(), QString("RTMP Push - 0: lost, retry in 4 s (connection refused)\n"
                                                    "HTTP: up for 00:00:30, 4124 kbit/s"));
    QVERIFY(desk.streamLabel()->property("alert").toBool());
    desk.stream() = running({up});
    desk.tick();
    QVERIFY(!desk.streamLabel()->property("alert").toBool());
  }

  void labelsMoveAndClipNothing() {
    OpenDesk desk;
    const auto place = [&desk](const char* name) {
      auto* widget = desk.child<QWidget>(name);
      return QRect(widget->mapTo(desk.console, QPoint()), widget->size());
    };
    for (const QSize& size : {QSize(1270, 670), QSize(1014, 600), QSize(1910, 1030)}) {
      desk.record() = {};
      desk.stream() = {};
      desk.console->resize(size);
      desk.tick();
      const QRect pgm = place("_pgmPreviewWidget");
      const QRect pvm = place("_pvmPreviewWidget");
      desk.record() = running();
      desk.record().writtenMs = 359'999'000;
      desk.record().writtenBytes = 999'900'000'000;
      desk.record().roomSeconds = 59'940;
      desk.record().verifiedMs = 359'990'000;
      desk.stream() = running({target("RTMP Push - 0", State::Lost, 0, 10),
                               target("RTMP Push - 1", State::Lost, 0, 10), target("HLS", State::Up, 10)});
      desk.tick();
      QCOMPARE(place("_pgmPreviewWidget"), pgm);
      QCOMPARE(place("_pvmPreviewWidget"), pvm);
      const QRect record = place("_recordStatusLabel");
      const QRect stream = place("_streamStatusLabel");
      QVERIFY(record.left() >= place("_startRecordPushButton").right());
      QVERIFY(record.right() <= place("_programNameLineEdit").left());
      QVERIFY(stream.left() >= place("_startStreamPushButton").right());
      QVERIFY(stream.right() <= place("_screenCutPushButton").left());
      QVERIFY(place("_programNameLineEdit").width() > 60);
      const QFontMetrics metrics = desk.recordLabel()->fontMetrics();
      QVERIFY(record.height() >= 2 * (metrics.ascent() + metrics.descent()) - metrics.descent());
      if (size.width() < 1270)
        continue;
      for (const QString& line : desk.recordLabel()->text().split('\n'))
        QVERIFY2(metrics.horizontalAdvance(line) <= record.width(), qPrintable(line));
    }
  }
};

QTEST_MAIN(OutputStatusTest)
#include "tst_output_status.moc"

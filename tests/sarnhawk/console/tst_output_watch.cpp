// What the operator is told of outputs that fail or lose frames, and how their buttons follow.
#include <QGroupBox>
#include <QJsonArray>
#include <QPushButton>
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "StatusBoard.h"
#include "console/GOutputNotice.h"

namespace {

tagKorviaShowOutputReport reportOf(KorviaShowOutputState state, const QString& reason,
                                   const QString& fileName, qint64 droppedFrames) {
  tagKorviaShowOutputReport report;
  report.state = state;
  report.reason = reason;
  report.fileName = fileName;
  report.droppedFrames = droppedFrames;
  return report;
}

tagKorviaShowTargetReport target(const QString& name, KorviaShowTargetState state, const QString& reason = {},
                                 int retrySeconds = 0) {
  tagKorviaShowTargetReport report;
  report.name = name;
  report.state = state;
  report.reason = reason;
  report.retrySeconds = retrySeconds;
  return report;
}

class OpenDesk : public ConsoleDesk {
 public:
  OpenDesk() {
    isOpen = start();
    show.answer(ShowEventStartOutput, [](const ScriptedShow::Event& event) {
      return std::pair<QVariant, QVariant>(event.args[0], event.args[1]);
    });
    show.answer(ShowEventStopOutput, [](const ScriptedShow::Event& event) {
      return std::pair<QVariant, QVariant>(event.args[0], event.args[1]);
    });
  }

  QPushButton* record() const { return child<QPushButton>("_startRecordPushButton"); }
  QPushButton* stream() const { return child<QPushButton>("_startStreamPushButton"); }
  GOutputNotice* notice() const { return child<GOutputNotice>("_outputNoticePushButton"); }
  tagKorviaShowOutputReport& output(int slot) { return show.figures.outputs[static_cast<std::size_t>(slot)]; }
  /// Presses the button and lets the engine answer.
  void click(QPushButton* button) {
    button->click();
    settle();
  }
  void tick() { console->onWorkTimer(); }
  void failRecording() {
    output(OutputSlotRecord) =
        reportOf(KorviaShowOutputState::Failed, "no space left on device", "/records/vod/0/evening.mp4", 0);
    tick();
  }
  void runStream(const QList<tagKorviaShowTargetReport>& targets) {
    output(OutputSlotStream) = reportOf(KorviaShowOutputState::Running, {}, {}, 0);
    output(OutputSlotStream).targets = targets;
    tick();
  }
  void setDevices(const QList<tagKorviaShowTargetReport>& devices) {
    show.figures.deviceOutputs = devices;
    tick();
  }
  QJsonObject outputsOnBoard() const {
    return korvia::StatusBoard::instance().snapshot()["outputs"].toObject();
  }

  bool isOpen = false;
};

}  // namespace

class OutputWatchTest : public QObject {
  Q_OBJECT

 private slots:
  void buttonOfAFailedRecordingSpringsBack() {
    OpenDesk desk;
    desk.click(desk.record());
    QVERIFY(desk.record()->isChecked());
    desk.show.clearEvents();
    desk.failRecording();
    QVERIFY(!desk.record()->isChecked());
    QVERIFY(desk.record()->isEnabled());
    desk.settle();
    QVERIFY(desk.show.events().empty());
  }

  void noticeTellsReasonAndFile() {
    OpenDesk desk;
    QVERIFY(!desk.notice()->isVisible());
    desk.click(desk.record());
    desk.failRecording();
    QVERIFY(desk.notice()->isVisible());
    QCOMPARE(desk.notice()->text(), QString("Recording failed: no space left on device - evening.mp4"));
    QCOMPARE(desk.notice()->toolTip(),
             QString("Recording failed: no space left on device\n/records/vod/0/evening.mp4"));
  }

  void noticeCoversNoPicture() {
    OpenDesk desk;
    desk.click(desk.record());
    desk.output(OutputSlotRecord).fileName = "/records/" + QString(300, 'x') + ".mp4";
    desk.output(OutputSlotRecord).state = KorviaShowOutputState::Failed;
    desk.output(OutputSlotRecord).reason = QString(100, 'y');
    for (const QSize& size : {QSize(1270, 670), QSize(1014, 600), QSize(1900, 1000)}) {
      desk.console->resize(size);
      desk.settle();
      desk.tick();
      const QRect place(desk.notice()->mapTo(desk.console, QPoint()), desk.notice()->size());
      QVERIFY(desk.notice()->isVisible());
      QVERIFY(place.width() > 100);
      auto* box = desk.child<QGroupBox>("_pgmViewGroupBox");
      const int titleEnd =
          box->mapTo(desk.console, QPoint()).x() + box->fontMetrics().horizontalAdvance(box->title());
      QVERIFY(place.left() > titleEnd);
      for (const char* name : {"_pvmPreviewWidget", "_pgmPreviewWidget", "_videoPreviewWidget"}) {
        for (QWidget* picture : desk.console->findChildren<QWidget*>(name))
          QVERIFY2(!place.intersects({picture->mapTo(desk.console, QPoint()), picture->size()}), name);
      }
    }
  }

  void noticeIsClickedAwayForGood() {
    OpenDesk desk;
    desk.click(desk.record());
    desk.failRecording();
    QTest::mouseClick(desk.notice(), Qt::LeftButton);
    QVERIFY(!desk.notice()->isVisible());
    desk.tick();
    QVERIFY(!desk.notice()->isVisible());
  }

  void noticeGoesWhenTheNextRecordingStarts() {
    OpenDesk desk;
    desk.click(desk.record());
    desk.failRecording();
    desk.click(desk.record());
    QVERIFY(!desk.notice()->isVisible());
    desk.output(OutputSlotRecord) =
        reportOf(KorviaShowOutputState::Running, {}, "/records/vod/0/night.mp4", 0);
    desk.tick();
    QVERIFY(!desk.notice()->isVisible());
    QVERIFY(desk.record()->isChecked());
    // The next failure is told anew.
    desk.failRecording();
    QVERIFY(desk.notice()->isVisible());
  }

  void reportOfTheOutputBeforeIsNotTakenForTheNewOnes() {
    OpenDesk desk;
    desk.click(desk.record());
    desk.failRecording();
    // The answer lies in the event queue, so to the console the engine has not come to the start yet.
    desk.record()->click();
    desk.tick();
    QVERIFY(desk.record()->isChecked());
    QVERIFY(!desk.record()->isEnabled());
    QVERIFY(!desk.notice()->isVisible());
  }

  void quitNamesARecordingThatHasJustBegun() {
    OpenDesk desk;
    const auto details = [&desk] {
      const QuestionAnswer answer(QMessageBox::No);
      desk.console->onAction_quit();
      return answer.details;
    };
    desk.click(desk.record());
    desk.failRecording();
    QCOMPARE(details(), QString());
    // The engine has answered, and the newest report is still about the recording that failed.
    desk.click(desk.record());
    QVERIFY(desk.record()->isEnabled());
    QCOMPARE(details(), QString("A recording is running"));
    desk.output(OutputSlotRecord) =
        reportOf(KorviaShowOutputState::Running, {}, "/records/vod/0/night.mp4", 0);
    desk.tick();
    QCOMPARE(details(), QString("A recording is running: night.mp4"));
  }

  void failureAfterTheStopIsToldToo() {
    OpenDesk desk;
    desk.click(desk.record());
    desk.click(desk.record());
    QVERIFY(!desk.record()->isChecked());
    desk.failRecording();
    QVERIFY(desk.notice()->isVisible());
  }

  void otherStatesLeaveTheButton_data() {
    QTest::addColumn<int>("state");
    QTest::newRow("idle") << int(KorviaShowOutputState::Idle);
    QTest::newRow("starting") << int(KorviaShowOutputState::Starting);
    QTest::newRow("running") << int(KorviaShowOutputState::Running);
    QTest::newRow("finished") << int(KorviaShowOutputState::Finished);
  }
  void otherStatesLeaveTheButton() {
    QFETCH(int, state);
    OpenDesk desk;
    desk.click(desk.record());
    desk.output(OutputSlotRecord).state = static_cast<KorviaShowOutputState>(state);
    desk.tick();
    QVERIFY(desk.record()->isChecked());
    QVERIFY(!desk.notice()->isVisible());
  }

  void lostFramesAreToldOncePerRecording() {
    OpenDesk desk;
    desk.click(desk.record());
    desk.output(OutputSlotRecord) =
        reportOf(KorviaShowOutputState::Running, {}, "/records/vod/0/evening.mp4", 3);
    desk.tick();
    QCOMPARE(desk.notice()->text(), QString("Frames lost in the recording: 3 - evening.mp4"));
    QVERIFY(desk.record()->isChecked());
    desk.output(OutputSlotRecord).droppedFrames = 12;
    desk.tick();
    QCOMPARE(desk.notice()->text(), QString("Frames lost in the recording: 12 - evening.mp4"));
    desk.notice()->click();
    desk.output(OutputSlotRecord).droppedFrames = 20;
    desk.tick();
    QVERIFY(!desk.notice()->isVisible());
    // A failure weighs more than what was clicked away.
    desk.failRecording();
    QVERIFY(desk.notice()->isVisible());
    desk.click(desk.record());
    desk.output(OutputSlotRecord) =
        reportOf(KorviaShowOutputState::Running, {}, "/records/vod/0/night.mp4", 1);
    desk.tick();
    QCOMPARE(desk.notice()->text(), QString("Frames lost in the recording: 1 - night.mp4"));
  }

  void streamIsToldOfInItsOwnWords() {
    OpenDesk desk;
    desk.click(desk.stream());
    desk.click(desk.record());
    desk.output(OutputSlotStream) = reportOf(KorviaShowOutputState::Failed, "connection refused", {}, 0);
    desk.tick();
    QVERIFY(!desk.stream()->isChecked());
    QVERIFY(desk.record()->isChecked());
    QCOMPARE(desk.notice()->toolTip(), QString("Stream failed: connection refused"));
  }

  void targetThatIsDownIsToldWithReasonAndNextTry() {
    OpenDesk desk;
    desk.click(desk.stream());
    desk.runStream({target("UDP", KorviaShowTargetState::Up),
                    target("HTTP", KorviaShowTargetState::Lost, "connection refused", 5),
                    target("RTMP Push - 0", KorviaShowTargetState::Failed, "not authorised")});
    QVERIFY(desk.notice()->isVisible());
    QCOMPARE(desk.notice()->toolTip(), QString("RTMP Push - 0 failed: not authorised\n"
                                               "HTTP lost: connection refused, next try in 5 s"));
    QVERIFY(desk.notice()->text().startsWith("RTMP Push - 0 failed: not auth"));
    QVERIFY(desk.stream()->isChecked());
    desk.runStream({target("UDP", KorviaShowTargetState::Up), target("HTTP", KorviaShowTargetState::Up),
                    target("RTMP Push - 0", KorviaShowTargetState::Connecting)});
    QVERIFY(!desk.notice()->isVisible());
  }

  void targetsAreNotToldWhenTheWarningsAreOff() {
    OpenDesk desk;
    desk.console->getConfig()->enableOutputWarning = 0;
    desk.click(desk.stream());
    desk.runStream({target("HTTP", KorviaShowTargetState::Lost, "connection refused", 5)});
    QVERIFY(!desk.notice()->isVisible());
    // An output that ends is told of all the same.
    desk.output(OutputSlotStream).state = KorviaShowOutputState::Failed;
    desk.tick();
    QVERIFY(desk.notice()->isVisible());
  }

  void targetClickedAwayIsToldAgainWhenItGoesDownAgain() {
    OpenDesk desk;
    const auto http = target("HTTP", KorviaShowTargetState::Lost, "connection refused", 5);
    const auto httpUp = target("HTTP", KorviaShowTargetState::Up);
    const auto udp = target("UDP", KorviaShowTargetState::Failed, "network is unreachable");
    desk.click(desk.stream());
    desk.runStream({http});
    desk.notice()->click();
    QVERIFY(!desk.notice()->isVisible());
    desk.runStream({http});
    QVERIFY(!desk.notice()->isVisible());
    // Another one is news, and the first is told with it.
    desk.runStream({http, udp});
    QCOMPARE(desk.notice()->toolTip().count("\n"), 1);
    desk.notice()->click();
    desk.runStream({httpUp, udp});
    QVERIFY(!desk.notice()->isVisible());
    desk.runStream({http, udp});
    QVERIFY(desk.notice()->isVisible());
  }

  void lostFramesAreToldAfterTheTargetIsBack() {
    OpenDesk desk;
    const auto http = target("HTTP", KorviaShowTargetState::Lost);
    desk.click(desk.stream());
    desk.runStream({http});
    desk.output(OutputSlotStream).droppedFrames = 2;
    desk.tick();
    QCOMPARE(desk.notice()->toolTip(), QString("HTTP lost\nFrames lost in the stream: 2"));
    desk.notice()->click();
    desk.runStream({target("HTTP", KorviaShowTargetState::Up)});
    desk.output(OutputSlotStream).droppedFrames = 3;
    desk.tick();
    QVERIFY(!desk.notice()->isVisible());
    desk.click(desk.stream());
    desk.click(desk.stream());
    desk.runStream({http});
    desk.notice()->click();
    desk.runStream({target("HTTP", KorviaShowTargetState::Up)});
    desk.output(OutputSlotStream).droppedFrames = 4;
    desk.tick();
    QCOMPARE(desk.notice()->text(), QString("Frames lost in the stream: 4"));
  }

  void recordingThatCannotBeReadBackIsTold() {
    OpenDesk desk;
    desk.click(desk.record());
    tagKorviaShowOutputReport& report = desk.output(OutputSlotRecord);
    report.state = KorviaShowOutputState::Running;
    report.fileName = "/records/evening.mkv";
    report.warning = "the container is damaged";
    desk.tick();
    QVERIFY(desk.notice()->isVisible());
    QCOMPARE(desk.notice()->toolTip(), QString("Recording cannot be read back: the container is damaged\n"
                                               "/records/evening.mkv"));
    QVERIFY(desk.record()->isChecked());
    QTest::mouseClick(desk.notice(), Qt::LeftButton);
    desk.tick();
    QVERIFY(!desk.notice()->isVisible());
    // What happens after it is told all the same.
    report.targets = {target("Record", KorviaShowTargetState::Lost, "the disk is full", 1)};
    desk.tick();
    QVERIFY(desk.notice()->isVisible());
    QCOMPARE(desk.notice()->toolTip(), QString("Record lost: the disk is full, next try in 1 s"));
  }

  void failureReplacesWhatWasToldOfTargets() {
    OpenDesk desk;
    desk.click(desk.stream());
    desk.runStream({target("HTTP", KorviaShowTargetState::Lost, "connection refused", 5)});
    desk.notice()->click();
    desk.output(OutputSlotStream).state = KorviaShowOutputState::Failed;
    desk.output(OutputSlotStream).reason = "no target is left";
    desk.tick();
    QCOMPARE(desk.notice()->text(), QString("Stream failed: no target is left"));
  }

  void targetsOfAStreamThatEndedAreNotTold() {
    OpenDesk desk;
    desk.click(desk.stream());
    desk.runStream({target("HTTP", KorviaShowTargetState::Lost, "connection refused", 5)});
    desk.output(OutputSlotStream).state = KorviaShowOutputState::Finished;
    desk.tick();
    QVERIFY(!desk.notice()->isVisible());
  }

  void deviceThatIsDownIsToldUntilItIsUp() {
    OpenDesk desk;
    desk.setDevices({target("Virtual Camera", KorviaShowTargetState::Connecting),
                     target("NDI", KorviaShowTargetState::Lost, "the plugin is not installed", 4),
                     target("SDI", KorviaShowTargetState::Failed, "the format is unknown")});
    QVERIFY(desk.notice()->isVisible());
    QCOMPARE(desk.notice()->toolTip(), QString("SDI failed: the format is unknown\n"
                                               "NDI lost: the plugin is not installed, next try in 4 s"));
    desk.setDevices({target("NDI", KorviaShowTargetState::Up)});
    QVERIFY(!desk.notice()->isVisible());
    // An output that the operator has switched off is not told of any more.
    desk.setDevices({target("NDI", KorviaShowTargetState::Lost)});
    QCOMPARE(desk.notice()->text(), QString("NDI lost"));
    desk.setDevices({});
    QVERIFY(!desk.notice()->isVisible());
  }

  void deviceIsToldBesideTheStream() {
    OpenDesk desk;
    desk.click(desk.stream());
    desk.show.figures.deviceOutputs = {target("NDI", KorviaShowTargetState::Lost)};
    desk.runStream({target("HTTP", KorviaShowTargetState::Lost)});
    QCOMPARE(desk.notice()->toolTip(), QString("HTTP lost\nNDI lost"));
    // A new start of the stream leaves the device alone.
    desk.click(desk.stream());
    desk.click(desk.stream());
    desk.runStream({target("HTTP", KorviaShowTargetState::Up)});
    QCOMPARE(desk.notice()->text(), QString("NDI lost"));
  }

  void deviceClickedAwayIsToldAgainWhenItGoesDownAgain() {
    OpenDesk desk;
    const auto down = target("Virtual Camera", KorviaShowTargetState::Lost, "no device", 5);
    desk.setDevices({down});
    QTest::mouseClick(desk.notice(), Qt::LeftButton);
    desk.setDevices({down});
    QVERIFY(!desk.notice()->isVisible());
    desk.setDevices({target("Virtual Camera", KorviaShowTargetState::Up)});
    desk.setDevices({down});
    QVERIFY(desk.notice()->isVisible());
  }

  void devicesAreNotToldWhenTheWarningsAreOff() {
    OpenDesk desk;
    desk.console->getConfig()->enableOutputWarning = 0;
    desk.setDevices({target("NDI", KorviaShowTargetState::Lost)});
    QVERIFY(!desk.notice()->isVisible());
  }

  void statusTellsDevices() {
    OpenDesk desk;
    desk.setDevices({});
    QVERIFY(desk.outputsOnBoard()["devices"].toArray().isEmpty());
    desk.setDevices({target("SDI", KorviaShowTargetState::Lost, "the card does not open", 3)});
    const QJsonObject device = desk.outputsOnBoard()["devices"].toArray()[0].toObject();
    QCOMPARE(device["name"].toString(), QString("SDI"));
    QCOMPARE(device["state"].toString(), QString("Lost"));
    QCOMPARE(device["reason"].toString(), QString("the card does not open"));
    QCOMPARE(device["retrySeconds"].toInt(), 3);
  }

  void statusAgrees() {
    OpenDesk desk;
    desk.click(desk.record());
    desk.show.figures.recording = true;
    desk.tick();
    QCOMPARE(desk.outputsOnBoard()["recording"], QJsonValue(true));
    desk.failRecording();
    desk.output(OutputSlotRecord).droppedFrames = 4;
    desk.tick();
    const QJsonObject outputs = desk.outputsOnBoard();
    QCOMPARE(outputs["recording"], QJsonValue(false));
    const QJsonObject record = outputs["record"].toObject();
    QCOMPARE(record["state"].toString(), QString("Failed"));
    QCOMPARE(record["reason"].toString(), QString("no space left on device"));
    QCOMPARE(record["file"].toString(), QString("evening.mp4"));
    QCOMPARE(record["droppedFrames"].toInt(), 4);
    QCOMPARE(outputs["stream"].toObject()["state"].toString(), QString("Idle"));
  }

  void statusTellsTargetsAndWhatIsWritten() {
    OpenDesk desk;
    desk.runStream({target("HTTP", KorviaShowTargetState::Lost, "connection refused", 5)});
    const QJsonObject lost = desk.outputsOnBoard()["stream"].toObject()["targets"].toArray()[0].toObject();
    QCOMPARE(lost["name"].toString(), QString("HTTP"));
    QCOMPARE(lost["state"].toString(), QString("Lost"));
    QCOMPARE(lost["reason"].toString(), QString("connection refused"));
    QCOMPARE(lost["retrySeconds"].toInt(), 5);
    QJsonObject record = desk.outputsOnBoard()["record"].toObject();
    QCOMPARE(record["verifiedMs"], QJsonValue(QJsonValue::Null));
    QCOMPARE(record["roomSeconds"], QJsonValue(QJsonValue::Null));
    desk.output(OutputSlotRecord).writtenMs = 4000;
    desk.output(OutputSlotRecord).writtenBytes = 2'000'000;
    desk.output(OutputSlotRecord).roomSeconds = 0;
    desk.output(OutputSlotRecord).verifiedMs = 3000;
    desk.tick();
    record = desk.outputsOnBoard()["record"].toObject();
    QCOMPARE(record["writtenMs"].toInt(), 4000);
    QCOMPARE(record["writtenBytes"].toInt(), 2'000'000);
    QCOMPARE(record["roomSeconds"].toInt(-1), 0);
    QCOMPARE(record["verifiedMs"].toInt(), 3000);
  }
};

QTEST_MAIN(OutputWatchTest)
#include "tst_output_watch.moc"

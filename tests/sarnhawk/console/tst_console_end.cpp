// How the console asks before it ends, and goes down.
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaShowEvents.h"
#include "console/GWidgetDisplayObject.h"
#include "console/GWidgetDisplayObjectConfig.h"
#include "transitions/GWidgetTransitionEffectConfig.h"

namespace {

QList<int> timerIntervals(const ConsoleDesk& desk) {
  QList<int> intervals;
  for (const QTimer* timer : desk.console->findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly))
    intervals.append(timer->interval());
  std::sort(intervals.begin(), intervals.end());
  return intervals;
}

QStringList& logLines() {
  static QStringList lines;
  return lines;
}

void keepLine(QtMsgType, const QMessageLogContext&, const QString& text) {
  logLines().append(text);
}

}  // namespace

class ConsoleEndTest : public QObject {
  Q_OBJECT

 private slots:
  void startAndEndAreLoggedInTheirOrder() {
    logLines().clear();
    const QtMessageHandler before = qInstallMessageHandler(keepLine);
    {
      ConsoleDesk desk;
      desk.start();
    }
    qInstallMessageHandler(before);
    const QStringList told{"create painter window ...", "create web server ...", "start web server ...",
                           "create rtmp server ...",    "start rtmp server ...", "startup spend time : 1001",
                           "destory paint pad ...",     "stop web server ...",   "stop rtmp server ..."};
    QStringList heard;
    for (const QString& line : logLines()) {
      if (told.contains(line))
        heard.append(line);
    }
    QCOMPARE(heard, told);
  }

  void closeStopsEngineThenServers() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    desk.console->serverLog.clear();
    QCOMPARE(desk.show.enginesAlive, 1);
    static_cast<IKorviaSarnhawk*>(desk.console)->close();
    QCOMPARE(desk.show.eventIds().last(), quint64{ShowEventClose});
    QCOMPARE(desk.show.enginesAlive, 0);
    QVERIFY(!desk.console->getEngine());
    QVERIFY(desk.console->findChildren<GWidgetDisplayObject*>().isEmpty());
    QVERIFY(desk.console->findChildren<GWidgetDisplayObjectConfig*>().isEmpty());
    QCOMPARE(desk.console->serverLog,
             (QStringList{"web close", "web release", "income close", "income release"}));
    // The frame timer stays, stopped, until its parent goes.
    QCOMPARE(timerIntervals(desk), QList<int>{30});
  }

  void closeDestroysTheWindowsInTheirOrder() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    const QString channelWindow = "channel window";
    const QString editor = "transition editor";
    const QString strip = "strip";
    QStringList gone;
    const auto watch = [&gone](const QObject* window, const QString& name) {
      connect(window, &QObject::destroyed, [&gone, name] { gone.append(name); });
    };
    watch(desk.console->findChild<GWidgetDisplayObjectConfig*>(), channelWindow);
    watch(desk.console->findChild<GWidgetTransitionEffectConfig*>(), editor);
    watch(desk.strip(0x10), strip);
    static_cast<IKorviaSarnhawk*>(desk.console)->close();
    QCOMPARE(gone, (QStringList{channelWindow, editor, strip}));
  }

  void closeTwiceDoesNothingHarmful() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    static_cast<IKorviaSarnhawk*>(desk.console)->close();
    const QStringList log = desk.console->serverLog;
    static_cast<IKorviaSarnhawk*>(desk.console)->close();
    QCOMPARE(desk.console->serverLog, log);
    QCOMPARE(desk.show.count(ShowEventClose), 1);
  }

  void closeBeforeTheEngineOpenedStillStopsTheServers() {
    ConsoleDesk desk;
    desk.create();
    desk.console->serverLog.clear();
    static_cast<IKorviaSarnhawk*>(desk.console)->close();
    QVERIFY(desk.show.events().empty());
    QCOMPARE(desk.console->serverLog,
             (QStringList{"web close", "web release", "income close", "income release"}));
  }

  void closeWithoutCreateIsHarmless() {
    ConsoleDesk desk;
    static_cast<IKorviaSarnhawk*>(desk.console)->close();
    QVERIFY(desk.console->serverLog.isEmpty());
  }

  void resultThatComesAfterTheCloseIsDropped() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    // Emitted on another thread, so queued, and still in the queue when the console closes.
    std::thread late([&desk] {
      desk.console->onPostEventResult(ShowEventSelectChannel, 0, qulonglong{0x1001}, 0x12, {}, {});
    });
    late.join();
    static_cast<IKorviaSarnhawk*>(desk.console)->close();
    QCoreApplication::processEvents();
    QCOMPARE(desk.console->getConfig()->pvmChannel, 0x10);
  }

  void quitAsksAndNoKeepsTheWindow() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    const QuestionAnswer answer(QMessageBox::No);
    desk.console->onAction_quit();
    QVERIFY(answer.wasAsked);
    QCOMPARE(answer.title, QString("Message"));
    QCOMPARE(answer.text, QString("Are you sure to quit ?"));
    QCOMPARE(answer.buttons, QMessageBox::Yes | QMessageBox::No);
    QVERIFY(desk.frame.isVisible());
  }

  void quitAndYesClosesTheFrame() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    const QuestionAnswer answer(QMessageBox::Yes);
    desk.console->onAction_quit();
    QVERIFY(!desk.frame.isVisible());
  }

  void quitNamesWhatRuns() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    const auto details = [&desk] {
      const QuestionAnswer answer(QMessageBox::No);
      desk.console->onAction_quit();
      return answer.details;
    };
    QCOMPARE(details(), QString());
    desk.show.figures.recording = true;
    desk.show.figures.outputs[OutputSlotRecord].state = KorviaShowOutputState::Running;
    desk.show.figures.outputs[OutputSlotRecord].fileName = "/records/vod/0/evening.mp4";
    desk.console->onWorkTimer();
    QCOMPARE(details(), QString("A recording is running: evening.mp4"));
    tagKorviaShowOutputItem& stream = desk.console->getConfig()->outputParam.items[OutputSlotStream];
    stream.rtmp0Enable = 1;
    stream.rtmp0Url = "rtmp://host/live?key=secret";
    stream.hlsEnable = 1;
    // Not answered yet, so no report tells of it.
    desk.child<QPushButton>("_startStreamPushButton")->click();
    QCOMPARE(details(),
             QString("A recording is running: evening.mp4\nA stream is running: RTMP Push - 0, HLS"));
    desk.show.figures.outputs[OutputSlotRecord].state = KorviaShowOutputState::Failed;
    desk.console->onWorkTimer();
    QCOMPARE(details(), QString("A stream is running: RTMP Push - 0, HLS"));
  }
};

QTEST_MAIN(ConsoleEndTest)
#include "tst_console_end.moc"

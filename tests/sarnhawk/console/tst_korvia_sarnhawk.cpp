// How the console comes up, opens its engine, answers for its interfaces and goes down again.
#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSlider>
#include <QTableWidget>
#include <QTimer>
#include <QToolButton>
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "StatusBoard.h"
#include "console/GFloatWidgetToolButton.h"
#include "console/GWidgetDisplayObject.h"
#include "console/GWidgetDisplayObjectConfig.h"
#include "console/StripLayout.h"
#include "shell/GAppCaptionBar.h"
#include "tagKorviaShowEngineInfo.h"
#include "transitions/GWidgetTransitionEffectConfig.h"

namespace {

constexpr unsigned kVersion = 0x01010100;

void* ask(KorviaSarnhawk* console, const Identifier& id, unsigned version = kVersion) {
  return console->queryInterface(&id, version);
}

bool isDeskEnabled(const ConsoleDesk& desk) {
  return desk.console->centralWidget()->isEnabled();
}

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

class KorviaSarnhawkTest : public QObject {
  Q_OBJECT

 private slots:
  void interfaceRequestHonoursTheVersion() {
    ConsoleDesk desk;
    QVERIFY(ask(desk.console, kIKorviaSarnhawkId, 0x010101FF));
    QVERIFY(!ask(desk.console, kIKorviaSarnhawkId, 0x01010200));
    QVERIFY(!ask(desk.console, kIKorviaSarnhawkPrivId, 0x01010200));
    QVERIFY(!ask(desk.console, kIMainFrameId));
    QVERIFY(!desk.console->queryInterface(nullptr, kVersion));
  }

  void eachInterfaceIsAnsweredByItsOwnPointer() {
    ConsoleDesk desk;
    KorviaSarnhawk* console = desk.console;
    QCOMPARE(ask(console, kIKorviaSarnhawkId), static_cast<void*>(static_cast<IKorviaSarnhawk*>(console)));
    QCOMPARE(ask(console, kIKorviaSarnhawkPrivId),
             static_cast<void*>(static_cast<IKorviaSarnhawkPriv*>(console)));
    QCOMPARE(ask(console, kIKorviaShowThreadSinkId),
             static_cast<void*>(static_cast<IKorviaShowThreadSink*>(console)));
    QCOMPARE(ask(console, kIKorviaShowEngineSinkId),
             static_cast<void*>(static_cast<IKorviaShowEngineSink*>(console)));
    QCOMPARE(ask(console, kIKorviaWebServerSinkId),
             static_cast<void*>(static_cast<IKorviaWebServerSink*>(console)));
  }

  void unknownIsTheConsoleInterfaceInAnyVersion() {
    ConsoleDesk desk;
    auto* expected = static_cast<void*>(static_cast<IKorviaSarnhawk*>(desk.console));
    QCOMPARE(ask(desk.console, kIUnknownExId), expected);
    QCOMPARE(ask(desk.console, kIUnknownExId, 0x09090909), expected);
  }

  void incomeServerRequestIsPassedOnUnchanged() {
    ConsoleDesk desk;
    QVERIFY(desk.create());
    // The test's server answers its identifier in any version, which the console's own test would not.
    QVERIFY(ask(desk.console, kIKorviaRTMPIncomeServerId, 0x01010200));
  }

  void releaseDeletesTheConsole() {
    QWidget frame;
    QPointer<KorviaSarnhawk> console = new KorviaSarnhawk(nullptr, &frame);
    QVERIFY(static_cast<IKorviaSarnhawkPriv*>(console.data())->release());
    QVERIFY(console.isNull());
  }

  void constructorPresetsIncomeAndRecordPaths() {
    ConsoleDesk desk;
    const tagKorviaSarnhawkConfig* config = desk.console->getConfig();
    QCOMPARE(config->channels[0].source.incomePath, QString("/income/0"));
    QCOMPARE(config->channels[7].source.incomePath, QString("/income/7"));
    QCOMPARE(config->outputParam.items[1].recordPath, QString("d:\\records\\vod\\0\\"));
  }

  void createOverridesTheRecord() {
    ConsoleDesk desk;
    desk.console->getConfig()->layoutMode = 5;
    tagKorviaShowEngineInfo& before = desk.console->getConfig()->engineInfo;
    before.reserved1 = before.reserved2 = before.reserved3 = 0;
    QVERIFY(desk.create());
    const tagKorviaSarnhawkConfig* config = desk.console->getConfig();
    QCOMPARE(config->layoutMode, 1);
    QCOMPARE(config->engineInfo.renderDevice, 1);
    QCOMPARE(config->engineInfo.renderAccelerator, 1);
    QCOMPARE(config->engineInfo.mediaChannelCount, 3);
    QCOMPARE(config->engineInfo.stageChannelCount, 1);
    QCOMPARE(config->engineInfo.reserved1, 1);
    QCOMPARE(config->engineInfo.reserved2, 1);
    QCOMPARE(config->engineInfo.reserved3, 1);
    QCOMPARE(config->engineInfo.showDataPath, QString("D:\\KorviaVR\\code\\output\\ShowData\\"));
    QCOMPARE(config->engineInfo.secondDataPath, QString("D:\\KorviaVR\\code\\output\\ShowData\\"));
    QCOMPARE(config->engineInfo.cachePath, desk.rootPath + "cache\\");
    QCOMPARE(desk.console->getRootPath(), desk.rootPath);
  }

  void lyricFoldersAreFilledOnlyWhenEmpty() {
    ConsoleDesk desk;
    desk.create();
    const QStringList folders = desk.console->getConfig()->lyricFolders;
    const int drives = QDir::drives().size();
    QCOMPARE(folders.size(), 2 * drives);
    QCOMPARE(folders.first(), QDir::drives().last().absolutePath() + "/QQMusicCache/QQMusicLyric");
    QCOMPARE(folders.last(), QDir::drives().first().absolutePath() + "/KuGou/Lyric");

    ConsoleDesk other;
    other.console->getConfig()->lyricFolders = QStringList{"/lyrics"};
    other.create();
    QCOMPARE(other.console->getConfig()->lyricFolders, QStringList{"/lyrics"});
  }

  void createDisablesTheDeskAndStartsBothTimers() {
    ConsoleDesk desk;
    QVERIFY(desk.create());
    QVERIFY(!isDeskEnabled(desk));
    QCOMPARE(timerIntervals(desk), (QList<int>{30, 1000}));
    QCOMPARE(desk.console->serverLog, (QStringList{"web load", "web open", "income load"}));
    QCOMPARE(desk.console->webPortPlace, &desk.console->getConfig()->httpPort);
    QVERIFY(!desk.console->getSystemFontInfo()->families.isEmpty());
  }

  void formHasTheWidgetsOfTheDesk() {
    ConsoleDesk desk;
    desk.create();
    const char* const names[] = {"_topViewWidget",
                                 "_pvmFrame",
                                 "_pvmAUMeterFrame",
                                 "_pvmVolumeVerticalSlider",
                                 "_pvmViewGroupBox",
                                 "_pvmPreviewWidget",
                                 "_mediaControlWidget",
                                 "_mediaDurationLabel",
                                 "_mediaStateLabel",
                                 "_seekMediaHorizontalSlider",
                                 "_playMediaPushButton",
                                 "_stopMediaPushButton",
                                 "_pauseMediaPushButton",
                                 "_prevMediaPushButton",
                                 "_nextMediaPushButton",
                                 "_switchProcessPosVerticalSliderContainer",
                                 "_takeTransitionToolButton_0",
                                 "_takeTransitionToolButton_1",
                                 "_takeTransitionToolButton_2",
                                 "_takeTransitionToolButton_3",
                                 "_pgmFrame",
                                 "_pgmViewGroupBox",
                                 "_pgmPreviewWidget",
                                 "_programNameLineEdit",
                                 "_startRecordPushButton",
                                 "_startStreamPushButton",
                                 "_screenCutPushButton",
                                 "_paintOutputPushButton",
                                 "_pgmVolumeVerticalSlider",
                                 "_autoMixModePushButton",
                                 "_allMixModePushButton",
                                 "_manulMixModePushButton",
                                 "_pgmAUMeterFrame",
                                 "_bottomViewWidget",
                                 "_presentItemTabWidget",
                                 "_subtitleTab",
                                 "_logoTab",
                                 "_componentTab",
                                 "_overlayTab",
                                 "_karaokeTab",
                                 "_switchViewWidget",
                                 "_switchProcessPosVerticalSlider"};
    for (const char* name : names)
      QVERIFY2(desk.child<QWidget>(name), name);
  }

  void comesUpWithThreeMediaStripsAndOneStage() {
    ConsoleDesk desk;
    desk.create();
    QCOMPARE(desk.console->findChildren<GWidgetDisplayObject*>().size(), 4);
    QVERIFY(desk.strip(0x12));
    QVERIFY(!desk.strip(0x13));
    QVERIFY(desk.strip(0x100));
  }

  void leverIsMadeAsTheOperatorKnowsIt() {
    ConsoleDesk desk;
    desk.create();
    auto* lever = desk.child<QSlider>("_switchProcessPosVerticalSlider");
    QCOMPARE(lever->minimum(), 0);
    QCOMPARE(lever->maximum(), 10000);
    QCOMPARE(lever->singleStep(), 1);
    QCOMPARE(lever->pageStep(), 100);
    QCOMPARE(lever->value(), 0);
    QCOMPARE(lever->orientation(), Qt::Vertical);
    QVERIFY(lever->invertedControls());
    QCOMPARE(lever->tickPosition(), QSlider::TicksBothSides);
    QCOMPARE(lever->tickInterval(), 100);
    QCOMPARE(lever->minimumWidth(), 50);
    QCOMPARE(lever->maximumWidth(), 50);
  }

  void webServerMissingLeavesTheConsoleWithoutTimers() {
    ConsoleDesk desk;
    desk.console->hasWebServer = false;
    QTest::ignoreMessage(QtDebugMsg, "failed to create ui");
    QVERIFY(!desk.create());
    QVERIFY(isDeskEnabled(desk));
    QVERIFY(timerIntervals(desk).isEmpty());
    QCOMPARE(desk.console->serverLog, QStringList{"web load"});
    // Nothing ticks, so no engine ever opens.
    desk.frame.show();
    desk.passTime(5000);
    QTest::qWait(100);
    QVERIFY(!desk.console->getEngine());
  }

  void webServerThatDoesNotOpenFailsTheCreation() {
    ConsoleDesk desk;
    desk.console->webOpenResult = -1;
    QTest::ignoreMessage(QtDebugMsg, "failed to open web server");
    QVERIFY(!desk.create());
    QVERIFY(timerIntervals(desk).isEmpty());
    QVERIFY(!desk.console->serverLog.contains("income load"));
  }

  void incomeServerMissingFailsTheCreation() {
    ConsoleDesk desk;
    desk.console->hasIncomeServer = false;
    QVERIFY(!desk.create());
    QVERIFY(timerIntervals(desk).isEmpty());
    QVERIFY(isDeskEnabled(desk));
  }

  void systemMenuStandsOnTheCaptionBar() {
    ConsoleDesk desk;
    desk.create();
    QStringList texts;
    for (const QAction* action : desk.console->systemMenu()->actions())
      texts.append(action->isSeparator() ? QString("-") : action->text());
    QCOMPARE(texts, (QStringList{"System Config", "-", "Environment Check", "About", "Quit"}));
    QVERIFY(!desk.console->systemMenu()->actions().first()->isEnabled());
    QCOMPARE(desk.captionBar->mainMenuToolButton()->menu(), desk.console->systemMenu());
  }

  void takeButtonsHaveMenus() {
    ConsoleDesk desk;
    desk.create();
    for (int i = 0; i < 4; ++i) {
      auto* button = desk.child<QToolButton>(qPrintable(QString("_takeTransitionToolButton_%1").arg(i)));
      QStringList texts;
      for (const QAction* action : button->menu()->actions())
        texts.append(action->text());
      QCOMPARE(texts, (QStringList{"Take Effect", "Effect Config"}));
    }
  }

  void knownAudioDevicesReachTheEngineInfo() {
    ConsoleDesk desk;
    desk.console->devices = QStringList{"Desk", "Room"};
    desk.console->getConfig()->pgmDevice = "Desk";
    desk.console->getConfig()->pvmDevice = "Room";
    QVERIFY(desk.create());
    QCOMPARE(desk.console->getConfig()->engineInfo.pgmDevice, QString("Desk"));
    QCOMPARE(desk.console->getConfig()->engineInfo.pvmDevice, QString("Room"));
  }

  void missingAudioDeviceLosesItsNameAlone() {
    ConsoleDesk desk;
    desk.console->devices = QStringList{"Room"};
    desk.console->getConfig()->pgmDevice = "Desk";
    desk.console->getConfig()->pvmDevice = "Room";
    const QuestionAnswer answer([](QDialog* dialog) { dialog->reject(); });
    QVERIFY(desk.create());
    QVERIFY(answer.wasAsked);
    QCOMPARE(desk.console->getConfig()->pgmDevice, QString());
    QCOMPARE(desk.console->getConfig()->engineInfo.pgmDevice, QString());
    QCOMPARE(desk.console->getConfig()->engineInfo.pvmDevice, QString("Room"));
  }

  void audioDeviceThatTurnsUpKeepsItsName() {
    ConsoleDesk desk;
    desk.console->getConfig()->pgmDevice = "Desk";
    desk.console->getConfig()->pvmDevice = "Room";
    const QuestionAnswer answer([&desk](QDialog*) { desk.console->devices = QStringList{"Desk", "Room"}; });
    QVERIFY(desk.create());
    QVERIFY(answer.wasAsked);
    QCOMPARE(desk.console->getConfig()->engineInfo.pgmDevice, QString("Desk"));
  }

  void engineOpensAfterMoreThanASecond() {
    ConsoleDesk desk;
    desk.create();
    desk.frame.show();
    desk.passTime(1000);
    desk.console->onFrameTimer();
    QVERIFY(!desk.console->getEngine());
    desk.passTime(1);
    desk.console->onFrameTimer();
    QVERIFY(desk.console->getEngine());
  }

  void clockThatWrapsStillCounts() {
    ConsoleDesk desk;
    desk.nowMs = 0xFFFFFF00U;
    desk.create();
    desk.frame.show();
    desk.passTime(900);
    desk.console->onFrameTimer();
    QVERIFY(!desk.console->getEngine());
    desk.passTime(101);
    desk.console->onFrameTimer();
    QVERIFY(desk.console->getEngine());
  }

  void narrowWindowNeverOpensTheEngine() {
    ConsoleDesk desk;
    desk.console->resize(720, 600);
    desk.create();
    desk.console->resize(720, 600);
    desk.frame.show();
    QCOMPARE(desk.console->width(), 720);
    desk.passTime(60000);
    desk.console->onFrameTimer();
    QVERIFY(!desk.console->getEngine());
    QVERIFY(!isDeskEnabled(desk));
    desk.console->resize(721, 600);
    desk.console->onFrameTimer();
    QVERIFY(desk.console->getEngine());
  }

  void withoutAResizeTheEngineStaysShut() {
    ConsoleDesk desk;
    desk.create();
    desk.passTime(60000);
    // Never shown, so never resized.
    desk.console->onFrameTimer();
    QVERIFY(!desk.console->getEngine());
  }

  void resizeBeforeTheFirstSecondCounts() {
    ConsoleDesk desk;
    desk.create();
    desk.frame.show();
    desk.console->resize(1000, 600);
    desk.passTime(1001);
    desk.console->onFrameTimer();
    QVERIFY(desk.console->getEngine());
  }

  void engineIsRequestedOnlyOnce() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    desk.console->onFrameTimer();
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventOpen), 1);
  }

  void openCarriesRenderSetUpAndWindows() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    const ScriptedShow::Event open = desk.show.events().front();
    QCOMPARE(open.id, quint64{ShowEventOpen});
    const auto info = fromVariant<tagKorviaShowEngineInfo>(open.args[0]);
    QCOMPARE(info.mediaChannelCount, qint32{3});
    const auto windows = fromVariant<tagKorviaShowWindowPackInfo>(open.args[1]);
    auto* picture = desk.stripChild<QWidget>(0x10, "_videoPreviewWidget");
    QCOMPARE(windows.media[0].winId, picture->winId());
    QCOMPARE(windows.media[0].right, picture->width() - 1);
    QCOMPARE(windows.media[0].bottom, picture->height() - 1);
    QVERIFY(windows.media[2].winId != 0);
    QCOMPARE(windows.media[3], tagKorviaWindowInfo());
    QVERIFY(windows.stage[0].winId != 0);
    QCOMPARE(windows.stage[1], tagKorviaWindowInfo());
    QCOMPARE(windows.karaoke, tagKorviaWindowInfo());
    QCOMPARE(windows.pvm.winId, desk.child<QWidget>("_pvmPreviewWidget")->winId());
    QCOMPARE(windows.pgm.winId, desk.child<QWidget>("_pgmPreviewWidget")->winId());
    QVERIFY(!open.args[2].isValid());
  }

  void answerOfTheEngineFinishesTheStart() {
    ConsoleDesk desk;
    desk.console->getConfig()->audioMixer.mixMode = 2;
    desk.console->getConfig()->audioMixer.pgmVolume = 0.5;
    desk.console->getConfig()->pvmChannel = 0x11;
    QVERIFY(desk.start());
    QVERIFY(isDeskEnabled(desk));
    QCOMPARE(desk.show.eventIds(), (QList<quint64>{0, 49, 50, 50, 7, 7, 44, 46, 48}));
    const std::vector<ScriptedShow::Event> events = desk.show.events();
    QCOMPARE(events[1].args[0].toInt(), 2);
    QCOMPARE(events[2].args[0].toInt(), 0x1002);
    QCOMPARE(events[2].args[1], QVariant(0.5));
    QCOMPARE(events[3].args[0].toInt(), 0x1001);
    QCOMPARE(events[4].args[0].toInt(), 0x1001);
    QCOMPARE(events[4].args[1].toInt(), 0x11);
    QCOMPARE(events[5].args[0].toInt(), 0x1002);
    QCOMPARE(events[5].args[1].toInt(), 0x10);
    QCOMPARE(desk.progressTexts, QStringList{"Please Wait"});
    QCOMPARE(desk.child<QToolButton>("_takeTransitionToolButton_0")->text(), QString("Fade\nNormal"));
    QCOMPARE(desk.stripChild<QLabel>(0x11, "_titleLabel")->text(), QString("Media-1"));
    QCOMPARE(desk.stripChild<QLabel>(0x100, "_titleLabel")->text(), QString("Stage-0"));
  }

  void testFilmRunsOnTheFirstChannel() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    QVERIFY(desk.show.calls.contains("openSource 1"));
    QVERIFY(desk.show.lastHost == nullptr);
    const tagKorviaShowSourceInfo& slot = desk.console->getConfig()->channels[0].source;
    QCOMPARE(slot.kind, qint32{SourceKindMovie});
    QCOMPARE(slot.moviePath, QString("D:\\KorviaVR\\code\\output\\ShowData\\Common\\Demo\\demo.mp4"));
    QCOMPARE(desk.show.source(0)->info, slot);
  }

  void withoutMediaChannelsNoTestFilmRuns() {
    ConsoleDesk desk;
    desk.create();
    desk.console->getConfig()->engineInfo.mediaChannelCount = 0;
    QVERIFY(desk.open());
    QVERIFY(!desk.show.calls.contains("openSource 1"));
  }

  void hostMayAskForFilmsAtTheStart() {
    qApp->setProperty("korviaOpen",
                      QVariantMap{{"1", "/films/a.mp4"}, {"2", "/pictures/b.PNG"}, {"x", "/c"}});
    ConsoleDesk desk;
    QTest::ignoreMessage(QtDebugMsg, "failed to open media on channel x");
    const bool opened = desk.start();
    qApp->setProperty("korviaOpen", QVariant());
    QVERIFY(opened);
    QCOMPARE(desk.console->getConfig()->channels[1].source.moviePath, QString("/films/a.mp4"));
    QCOMPARE(desk.console->getConfig()->channels[2].source.kind, qint32{SourceKindImage});
    QCOMPARE(desk.console->getConfig()->channels[2].source.imagePath, QString("/pictures/b.PNG"));
    QVERIFY(desk.show.source(2));
  }

  void incomeServerStartsWithThePathsOfTheRoot() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    QCOMPARE(desk.console->incomeRootPath, desk.rootPath);
    QCOMPARE(desk.console->incomePort, 19000);
    QCOMPARE(desk.console->incomeHtmlPath, desk.rootPath + "html");
    QVERIFY(QDir(desk.rootPath + "html").exists());
  }

  void incomeServerThatFailsChangesNothingElse() {
    ConsoleDesk desk;
    desk.console->incomeOpenResult = -1;
    desk.create();
    QTest::ignoreMessage(QtDebugMsg, "failed to open rtmp server");
    QVERIFY(desk.open());
    QVERIFY(isDeskEnabled(desk));
  }

  void monitorResizeIsPostedAndConsumedOnceTheEngineIsOpen() {
    ConsoleDesk desk;
    desk.create();
    auto* preview = desk.child<QWidget>("_pvmPreviewWidget");
    preview->resize(300, 200);
    QVERIFY(desk.open());
    desk.show.clearEvents();
    preview->resize(320, 180);
    desk.child<QWidget>("_pgmPreviewWidget")->resize(160, 90);
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventResizeWindow);
    QCOMPARE(posted.size(), std::size_t{2});
    QCOMPARE(posted[0].args[0].toInt(), 0x1001);
    const auto info = fromVariant<tagKorviaWindowInfo>(posted[0].args[1]);
    QCOMPARE(info.winId, preview->winId());
    QCOMPARE(info.right, 319);
    QCOMPARE(info.bottom, 179);
    QCOMPARE(posted[1].args[0].toInt(), 0x1002);
  }

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

  void servicesDropWhatNeedsAnEngine() {
    ConsoleDesk desk;
    desk.create();
    desk.console->postEvent(ShowEventTake, 0x10);
    QVERIFY(!desk.console->getSource(MediaChannel));
    QVERIFY(!desk.console->openMedia(0, "/a.mp4"));
    QVERIFY(desk.show.events().empty());
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
    desk.show.figures.outputs[OutputSlotRecord] = {
        KorviaShowOutputState::Running, {}, "/records/vod/0/evening.mp4", 0};
    desk.console->onWorkTimer();
    QCOMPARE(details(), QString("A recording is running: evening.mp4"));
    tagKorviaShowOutputItem& stream = desk.console->getConfig()->outputParam.items[OutputSlotStream];
    stream.rtmp0Enable = 1;
    stream.rtmp0Url = "rtmp://host/live?key=secret";
    stream.hlsEnable = 1;
    // Not answered yet, so no report tells of it.
    desk.child<QPushButton>("_startStreamPushButton")->click();
    QCOMPARE(details(), QString("A recording is running: evening.mp4\nA stream is running: RTMP - 0, HLS"));
    desk.show.figures.outputs[OutputSlotRecord].state = KorviaShowOutputState::Failed;
    desk.console->onWorkTimer();
    QCOMPARE(details(), QString("A stream is running: RTMP - 0, HLS"));
  }

  void hideAllTakesEverythingFloatingOffTheScreen() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    desk.console->showChannelConfig(desk.child<QPushButton>("_startRecordPushButton"), 0x11);
    auto* config = desk.console->findChild<GWidgetDisplayObjectConfig*>();
    QVERIFY(config->isVisible());
    const QList<GFloatWidgetToolButton*> floats = desk.frame.findChildren<GFloatWidgetToolButton*>();
    QVERIFY(std::any_of(floats.begin(), floats.end(), [](QWidget* w) { return w->isVisible(); }));
    desk.console->hideAll();
    QVERIFY(!config->isVisible());
    QVERIFY(std::none_of(floats.begin(), floats.end(), [](QWidget* w) { return w->isVisible(); }));
  }

  void environmentCheckShowsThePorts() {
    ConsoleDesk desk;
    desk.create();
    QString className;
    desk.console->getConfig()->httpPort = 8800;
    korvia::StatusBoard::instance().publish("incomeServer",
                                            {{"running", true}, {"rtmpPort", 1936}, {"httpPort", 19000}});
    QStringList ports;
    QStringList own;
    const QuestionAnswer answer([&](QDialog* dialog) {
      className = dialog->metaObject()->className();
      const auto* table = dialog->findChild<QTableWidget*>();
      for (int row = 0; row < table->rowCount(); ++row) {
        ports.append(table->item(row, 0)->text() + " " + table->item(row, 1)->text());
        if (table->item(row, 2)->text() == "This program")
          own.append(table->item(row, 0)->text());
      }
      dialog->reject();
    });
    desk.console->onAction_environmentCheck();
    korvia::StatusBoard::instance().publish("incomeServer", {});
    QCOMPARE(className, QString("GDialogHWCheckSwitch"));
    QCOMPARE(ports, (QStringList{"1935 Required", "8080 Required", "8800 Required", "9000 Required",
                                 "19000 Required", "8000 Optional", "8001 Optional", "8002 Optional",
                                 "8003 Optional"}));
    QCOMPARE(own, (QStringList{"8800", "19000"}));
  }

  void aboutShowsTheProduct() {
    ConsoleDesk desk;
    desk.create();
    QString className;
    const QuestionAnswer answer([&className](QDialog* dialog) {
      className = dialog->metaObject()->className();
      dialog->reject();
    });
    desk.console->onAction_about();
    QCOMPARE(className, QString("GDialogProductAbout"));
  }

  void layoutTable_data() {
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("total");
    QTest::addColumn<int>("media");
    QTest::addColumn<int>("stage");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0 << 4 << 4 << 0 << "4 Media Channel , 0 Stage Channel";
    QTest::newRow("1") << 1 << 4 << 3 << 1 << "3 Media Channel , 1 Stage Channel";
    QTest::newRow("2") << 2 << 6 << 6 << 0 << "6 Media Channel , 0 Stage Channel";
    QTest::newRow("3") << 3 << 6 << 4 << 2 << "4 Media Channel , 2 Stage Channel";
    QTest::newRow("4") << 4 << 8 << 8 << 0 << "8 Media Channel , 0 Stage Channel";
    QTest::newRow("5") << 5 << 8 << 6 << 2 << "6 Media Channel , 2 Stage Channel";
    QTest::newRow("6") << 6 << 8 << 4 << 4 << "4 Media Channel , 4 Stage Channel";
  }
  void layoutTable() {
    QFETCH(int, mode);
    const StripLayout* layout = StripLayout::find(mode);
    QVERIFY(layout);
    QTEST(layout->total, "total");
    QTEST(layout->media, "media");
    QTEST(layout->stage, "stage");
    QTEST(QString(layout->text), "text");
  }
  void otherLayoutsDoNotExist() {
    QVERIFY(!StripLayout::find(-1));
    QVERIFY(!StripLayout::find(7));
  }
};

QTEST_MAIN(KorviaSarnhawkTest)
#include "tst_korvia_sarnhawk.moc"

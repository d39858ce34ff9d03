// How the console comes up, opens its engine and shows its windows.
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
#include "PublishRules.h"
#include "StatusBoard.h"
#include "console/GFloatWidgetToolButton.h"
#include "console/GWidgetDisplayObject.h"
#include "console/GWidgetDisplayObjectConfig.h"
#include "shell/GAppCaptionBar.h"
#include "tagKorviaShowEngineInfo.h"

namespace {

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

}  // namespace

class KorviaSarnhawkTest : public QObject {
  Q_OBJECT

 private slots:
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

  void incomeServerTakesTheNamesOfTheRecords() {
    const korvia::PublishRules& rules = korvia::PublishRules::instance();
    {
      ConsoleDesk desk;
      QVERIFY(!rules.allows("0"));
      QVERIFY(desk.start());
      for (int index = 0; index < 8; ++index)
        QVERIFY(rules.allows(QString::number(index)));
      desk.console->getConfig()->channels[3].source.incomePath = "/income/camera";
      desk.console->saveChanges(0, 3);
      QVERIFY(rules.allows("camera"));
      QVERIFY(!rules.allows("3"));
      desk.console->getConfig()->channels[3].source.incomePath = "/income/phone";
      desk.console->onWorkTimer();
      QVERIFY(rules.allows("phone"));
    }
    QVERIFY(!rules.allows("0"));
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
};

QTEST_MAIN(KorviaSarnhawkTest)
#include "tst_korvia_sarnhawk.moc"

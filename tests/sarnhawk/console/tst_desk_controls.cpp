// Transport, lever, outputs, audio and takes: what the controls post and show.
#include <QLineEdit>
#include <QMenu>
#include <QSlider>
#include <QToolButton>
#include <QtTest>

#include "ControlsDesk.h"
#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "StatusBoard.h"
#include "audio/QVUMeter.h"
#include "console/TransportRow.h"
#include "present/GListWidgetItemInfo.h"

namespace {

constexpr qint64 kTenthsPerSecond = 10000;

}  // namespace

class DeskControlsTest : public QObject {
  Q_OBJECT

 private slots:
  void transportIsOffWithoutASource() {
    ControlsDesk desk;
    desk.console->onWorkTimer();
    QVERIFY(desk.child<QWidget>("_mediaControlWidget")->isEnabled());
    desk.show.removeSource(0);
    desk.console->onWorkTimer();
    QVERIFY(!desk.child<QWidget>("_mediaControlWidget")->isEnabled());
  }

  void transportIsOffWithoutAnEngine() {
    ConsoleDesk desk;
    desk.create();
    desk.console->onWorkTimer();
    QVERIFY(!desk.child<QWidget>("_mediaControlWidget")->isEnabled());
  }

  void transportShowsTimeStateAndItem() {
    ControlsDesk desk;
    desk.source->time = 65 * kTenthsPerSecond;
    desk.source->duration = 3725 * kTenthsPerSecond;
    desk.source->playState = Paused;
    desk.source->itemIndex = 2;
    desk.source->itemCount = 7;
    desk.source->position = 42;
    desk.console->onWorkTimer();
    QCOMPARE(desk.text("_mediaDurationLabel"), QString("00:01:05/01:02:05"));
    QCOMPARE(desk.text("_mediaStateLabel"), QString("Paused 3/7"));
    QCOMPARE(desk.slider("_seekMediaHorizontalSlider")->value(), 42);
    QVERIFY(desk.source->calls.isEmpty());
  }

  void lengthsWrapAtTwentyFourHours() {
    QCOMPARE(TransportRow::timeText(25LL * 3600 * kTenthsPerSecond), QString("01:00:00"));
    QCOMPARE(TransportRow::timeText(0), QString("00:00:00"));
    QCOMPARE(TransportRow::timeText(9999), QString("00:00:00"));
    QCOMPARE(TransportRow::timeText(-50000), QString("00:00:00"));
    QCOMPARE(TransportRow::timeText(100000LL * 3600 * kTenthsPerSecond), QString("16:00:00"));
  }

  void statesHaveTheirNames() {
    QStringList names;
    for (int state = 0; state < 8; ++state)
      names.append(TransportRow::stateName(state));
    QCOMPARE(names, (QStringList{"NothingSpecial", "Opening", "Buffering", "Playing", "Paused", "Stopped",
                                 "Ended", "Error"}));
    QCOMPARE(TransportRow::stateName(8), QString());
    QCOMPARE(TransportRow::stateName(-1), QString());
  }

  void transportButtonsByKind_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("play");
    QTest::addColumn<bool>("step");
    for (const int kind : {1, 3, 4, 5, 7, 8, 9, 10, 11, 12, 15, 16, 17, 18})
      QTest::newRow(qPrintable(QString::number(kind))) << kind << true << false;
    QTest::newRow("2") << 2 << true << true;
    QTest::newRow("6") << 6 << true << true;
    QTest::newRow("14") << 14 << false << true;
  }
  void transportButtonsByKind() {
    QFETCH(int, kind);
    QFETCH(bool, play);
    QFETCH(bool, step);
    ControlsDesk desk;
    desk.source->info.kind = kind;
    desk.console->onWorkTimer();
    QCOMPARE(!desk.button("_playMediaPushButton")->isHidden(), play);
    QCOMPARE(!desk.button("_stopMediaPushButton")->isHidden(), play);
    QCOMPARE(!desk.button("_pauseMediaPushButton")->isHidden(), play);
    QCOMPARE(!desk.button("_prevMediaPushButton")->isHidden(), step);
    QCOMPARE(!desk.button("_nextMediaPushButton")->isHidden(), step);
  }

  void otherKindsLeaveTheButtonsAsTheyAre_data() {
    QTest::addColumn<int>("kind");
    QTest::newRow("none") << 0;
    QTest::newRow("office") << 13;
    QTest::newRow("unknown") << 19;
    QTest::newRow("negative") << -1;
  }
  void otherKindsLeaveTheButtonsAsTheyAre() {
    QFETCH(int, kind);
    ControlsDesk desk;
    desk.source->info.kind = SourceKindPdf;
    desk.console->onWorkTimer();
    desk.source->info.kind = kind;
    desk.console->onWorkTimer();
    QVERIFY(desk.button("_playMediaPushButton")->isHidden());
    QVERIFY(!desk.button("_nextMediaPushButton")->isHidden());
  }

  void transportActsOnPreviewAlone() {
    ControlsDesk desk;
    ScriptedSource* onPreview = desk.show.addSource(1);
    desk.report(ShowEventSelectChannel, qulonglong{0x1001}, 0x11);
    desk.console->onClicked_playMediaPushButton();
    desk.console->onClicked_stopMediaPushButton();
    desk.console->onClicked_pauseMediaPushButton();
    desk.console->onClicked_prevMediaPushButton();
    desk.console->onClicked_nextMediaPushButton();
    QCOMPARE(onPreview->calls, (QStringList{"play", "stop", "pause", "prev", "next"}));
    QVERIFY(desk.source->calls.isEmpty());
  }

  void seekGoesToTheSourceAtOnce() {
    ControlsDesk desk;
    QSlider* seek = desk.slider("_seekMediaHorizontalSlider");
    QCOMPARE(seek->minimum(), 0);
    QCOMPARE(seek->maximum(), 100);
    QCOMPARE(seek->pageStep(), 5);
    seek->setValue(30);
    QCOMPARE(desk.source->calls, QStringList{"seek 30"});
  }

  void seekOfAStoppedSourceStartsIt_data() {
    QTest::addColumn<int>("state");
    QTest::addColumn<QStringList>("calls");
    QTest::newRow("nothing special") << 0 << QStringList{"play", "seek 30"};
    QTest::newRow("opening") << 1 << QStringList{"seek 30"};
    QTest::newRow("paused") << 4 << QStringList{"seek 30"};
    QTest::newRow("stopped") << 5 << QStringList{"play", "seek 30"};
    QTest::newRow("ended") << 6 << QStringList{"seek 30"};
  }
  void seekOfAStoppedSourceStartsIt() {
    QFETCH(int, state);
    QFETCH(QStringList, calls);
    ControlsDesk desk;
    desk.source->playState = state;
    desk.slider("_seekMediaHorizontalSlider")->setValue(30);
    QCOMPARE(desk.source->calls, calls);
  }

  void heldSeekSliderIsNotMovedByTheStatus() {
    ControlsDesk desk;
    QSlider* seek = desk.slider("_seekMediaHorizontalSlider");
    desk.source->position = 10;
    seek->setSliderDown(true);
    seek->setValue(60);
    desk.console->onWorkTimer();
    QCOMPARE(seek->value(), 60);
    QCOMPARE(desk.source->calls, QStringList{"seek 60"});
    seek->setSliderDown(false);
    desk.console->onWorkTimer();
    QCOMPARE(seek->value(), 10);
  }

  void leverPostsItsPosition() {
    ControlsDesk desk;
    desk.lever()->setValue(2500);
    desk.lever()->setValue(10000);
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventSwitchPosition);
    QCOMPARE(posted.size(), std::size_t{2});
    QCOMPARE(posted[0].args[0].toInt(), 0x1002);
    QCOMPARE(posted[0].args[1].userType(), int{QMetaType::Float});
    QCOMPARE(posted[0].args[1].toFloat(), 0.25F);
    QCOMPARE(posted[1].args[1].toFloat(), 1.0F);
    // The tool tip waits for the engine.
    QVERIFY(desk.lever()->toolTip().isEmpty());
  }

  void controlsWithoutAWindowAreOff() {
    ControlsDesk desk;
    for (const char* name : {"_screenCutPushButton", "_paintOutputPushButton"})
      QVERIFY2(!desk.button(name)->isEnabled(), name);
  }

  void recordButtonStartsWithACopyOfTheSettings() {
    ControlsDesk desk;
    desk.child<QLineEdit>("_programNameLineEdit")->setText("evening news");
    desk.config()->engineInfo.outputFormat[1].width = 1280;
    desk.button("_startRecordPushButton")->click();
    QVERIFY(!desk.button("_startRecordPushButton")->isEnabled());
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventStartOutput);
    QCOMPARE(posted.size(), std::size_t{1});
    QCOMPARE(posted[0].args[0].toInt(), 1);
    const auto param = fromVariant<tagKorviaShowOutputParam>(posted[0].args[1]);
    QCOMPARE(int{param.items[1].kind}, 2);
    QCOMPARE(int{param.items[1].recordActive}, 1);
    QCOMPARE(param.active[1], 1U);
    QCOMPARE(int{param.items[0].kind}, 0);
    QCOMPARE(posted[0].args[2].toString(), QString("evening news"));
    const auto format = fromVariant<tagKorviaFormatInfo>(posted[0].args[3]);
    QCOMPARE(int{format.video.width}, 1280);
    QCOMPARE(desk.config()->programName, QString("evening news"));
    QCOMPARE(int{desk.config()->outputParam.items[1].kind}, 0);
    QCOMPARE(desk.config()->outputParam.active[1], 0U);
  }

  void streamButtonStartsSlotZeroWithoutARecord() {
    ControlsDesk desk;
    desk.button("_startStreamPushButton")->click();
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventStartOutput);
    QCOMPARE(posted.size(), std::size_t{1});
    QCOMPARE(posted[0].args[0].toInt(), 0);
    const auto param = fromVariant<tagKorviaShowOutputParam>(posted[0].args[1]);
    QCOMPARE(int{param.items[0].kind}, 3);
    QCOMPARE(int{param.items[0].recordActive}, 0);
  }

  void directOutputsFollowTheRecordAtTheStart() {
    ConsoleDesk desk;
    desk.console->getConfig()->outputParam.items[0].ndiEnable = 1;
    QVERIFY(desk.start());
    const auto ids = desk.show.eventIds();
    QCOMPARE(ids.mid(ids.size() - 3), (QList<quint64>{44, 45, 48}));
    const auto ndi = desk.show.eventsOf(ShowEventStartNDI);
    QCOMPARE(ndi[0].args[0].toInt(), 0);
    QCOMPARE(int{fromVariant<tagKorviaShowOutputParam>(ndi[0].args[1]).items[0].ndiEnable}, 1);
    QVERIFY(!desk.show.eventsOf(ShowEventStopSDI)[0].args[1].isValid());
  }

  void paintPadReachesTheEngine() {
    ControlsDesk desk;
    desk.console->onCommitWhitePadImage(QImage());
    desk.console->onSetWhitePadValid(true);
    QVERIFY(desk.button("_paintOutputPushButton")->isChecked());
    desk.console->onPauseWhitePad(true);
    desk.console->onSetWhitePadValid(false);
    QVERIFY(!desk.button("_paintOutputPushButton")->isChecked());
    QCOMPARE(desk.show.calls, (QStringList{"commitPaintPadImage", "setPaintPadValid 1", "pausePGMImage 1",
                                           "setPaintPadValid 0", "pausePGMImage 0"}));
  }

  void mixButtonsPostTheirMode() {
    ControlsDesk desk;
    QCOMPARE(desk.button("_autoMixModePushButton")->toolTip(), QString("Audio Mixer - Auto"));
    QCOMPARE(desk.button("_allMixModePushButton")->toolTip(), QString("Audio Mixer - All Media Source"));
    QCOMPARE(desk.button("_manulMixModePushButton")->toolTip(), QString("Audio Mixer - Manual"));
    desk.console->savedChanges.clear();
    desk.button("_allMixModePushButton")->click();
    desk.button("_manulMixModePushButton")->click();
    desk.button("_autoMixModePushButton")->click();
    desk.settle();
    QList<int> modes;
    for (const auto& event : desk.show.eventsOf(ShowEventAudioMixMode))
      modes.append(event.args[0].toInt());
    QCOMPARE(modes, (QList<int>{1, 2, 0}));
    QCOMPARE(desk.console->savedChanges, (SavedChanges{{0x10, -1}, {0x10, -1}, {0x10, -1}}));
    QCOMPARE(desk.config()->audioMixer.mixMode, 0);
  }

  void mixModeWithoutASenderIsPostedAsItIs() {
    ControlsDesk desk;
    desk.config()->audioMixer.mixMode = 2;
    desk.console->onClicked_audioMixModePushButton();
    desk.settle();
    QCOMPARE(desk.show.eventsOf(ShowEventAudioMixMode)[0].args[0].toInt(), 2);
  }

  void volumeSlidersPostTheirFactor() {
    ControlsDesk desk;
    desk.slider("_pgmVolumeVerticalSlider")->setValue(0);
    desk.slider("_pgmVolumeVerticalSlider")->setValue(100);
    desk.console->savedChanges.clear();
    desk.slider("_pvmVolumeVerticalSlider")->setValue(50);
    QCOMPARE(desk.console->savedChanges, (SavedChanges{{0x10, -1}}));
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventVolume);
    QCOMPARE(posted.size(), std::size_t{3});
    QCOMPARE(posted[0].args[0].toInt(), 0x1002);
    QCOMPARE(posted[0].args[1], QVariant(0.0));
    QCOMPARE(posted[1].args[1], QVariant(1.0));
    QCOMPARE(posted[2].args[0].toInt(), 0x1001);
    QCOMPARE(posted[2].args[1], QVariant(0.5));
    QCOMPARE(desk.config()->audioMixer.pvmVolume, 0.5);
    // The division is made in float.
    desk.slider("_pvmVolumeVerticalSlider")->setValue(10);
    QCOMPARE(desk.config()->audioMixer.pvmVolume, double{0.1F});
  }

  void frameTickFeedsTheMeters() {
    ControlsDesk desk;
    desk.show.levels.setPvm({11, 12});
    desk.show.levels.setPgm({21, 22});
    desk.show.levels.setChannel(1, {31, 32});
    desk.console->onFrameTimer();
    const auto* pvm = desk.child<QWidget>("_pvmAUMeterFrame")->findChild<QVUMeter*>();
    const auto* pgm = desk.child<QWidget>("_pgmAUMeterFrame")->findChild<QVUMeter*>();
    const auto* strip = desk.stripChild<QWidget>(0x11, "_aumeterFrame")->findChild<QVUMeter*>();
    QCOMPARE(pvm->leftValue(), 11.0);
    QCOMPARE(pvm->rightValue(), 12.0);
    QCOMPARE(pgm->leftValue(), 21.0);
    QCOMPARE(strip->rightValue(), 32.0);
  }

  void takeSendsSlotAndRemembersIt() {
    ControlsDesk desk;
    desk.config()->takeButtons[2] = {75, 2.5F, 7};
    desk.console->takeChannel(0x12, 2);
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventTake);
    QCOMPARE(posted.size(), std::size_t{1});
    QCOMPARE(posted[0].args[0].toInt(), 0x12);
    QCOMPARE(posted[0].args[1].toInt(), 75);
    QCOMPARE(posted[0].args[2].userType(), int{QMetaType::Float});
    QCOMPARE(posted[0].args[2].toFloat(), 2.5F);
    QCOMPARE(posted[0].args[3].toInt(), 7);
    QCOMPARE(desk.config()->lastTakeIndex, 2);
  }

  void takeWithoutEffectOrDurationSendsZero() {
    ControlsDesk desk;
    desk.config()->takeButtons[0] = {0, 0.0F, 0};
    desk.console->takeChannel(0x10, 0);
    desk.settle();
    QCOMPARE(desk.show.eventsOf(ShowEventTake)[0].args[1].toInt(), 0);
    QCOMPARE(desk.show.eventsOf(ShowEventTake)[0].args[2].toFloat(), 0.0F);
  }

  void takeButtonTakesTheChannelOnPreview() {
    ControlsDesk desk;
    desk.report(ShowEventSelectChannel, qulonglong{0x1001}, 0x12);
    auto* button = desk.child<QToolButton>("_takeTransitionToolButton_1");
    button->click();
    button->menu()->actions().first()->trigger();
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventTake);
    QCOMPARE(posted.size(), std::size_t{2});
    QCOMPARE(posted[0].args[0].toInt(), 0x12);
    QCOMPARE(posted[0].args[1].toInt(), 1);
    QCOMPARE(posted[1].args[1].toInt(), 1);
  }

  void randomTakeKeepsTheRecordAndStaysBelowEighty() {
    ControlsDesk desk;
    desk.config()->takeButtons[0].effect = 65535;
    desk.console->takeChannel(0x10, 0);
    desk.settle();
    const int sent = desk.show.eventsOf(ShowEventTake)[0].args[1].toInt();
    QVERIFY(sent >= 0 && sent < 80);
    QCOMPARE(desk.config()->takeButtons[0].effect, 65535);
  }

  void takeReleasesTheFilmBeforeItIsPosted() {
    ControlsDesk desk;
    desk.config()->channels[0].source.moviePGMAction = PGMActionPauseResume;
    desk.console->takeChannel(0x10, 0);
    QCOMPARE(desk.source->calls, QStringList{"release"});
  }

  void takeOfAStageRunsNoRule() {
    ControlsDesk desk;
    desk.config()->channels[0].source.moviePGMAction = PGMActionPauseResume;
    desk.console->takeChannel(0x100, 0);
    desk.console->takeChannel(0x18, 0);
    desk.settle();
    QVERIFY(desk.source->calls.isEmpty());
    QCOMPARE(desk.show.eventsOf(ShowEventTake)[0].args[0].toInt(), 0x100);
    QCOMPARE(desk.show.eventsOf(ShowEventTake)[1].args[0].toInt(), 0x18);
  }

  void takeButtonShowsCatalogAndLabel() {
    ControlsDesk desk;
    auto* button = desk.child<QToolButton>("_takeTransitionToolButton_3");
    desk.config()->takeButtons[3].effect = 79;
    desk.console->updateTakeButton(3);
    QCOMPARE(button->text(), QString("Color\nApplyTextureMap"));
    QCOMPARE(button->toolTip(), QString("Color\nApplyTextureMap"));
    QCOMPARE(button->icon().availableSizes(), QList<QSize>{QSize(100, 84)});
    desk.config()->takeButtons[3].effect = 65535;
    desk.console->updateTakeButton(3);
    QCOMPARE(button->text(), QString("Sys\nRandom"));
    QVERIFY(!button->icon().isNull());
    desk.config()->takeButtons[3].effect = 21;
    desk.console->updateTakeButton(3);
    QCOMPARE(button->text(), QString("21"));
    QVERIFY(button->icon().isNull());
    desk.console->updateTakeButton(4);
    desk.console->updateTakeButton(-1);
  }

  void takeButtonWithoutItsPictureFileHasAnEmptyIcon() {
    ControlsDesk desk;
    auto* button = desk.child<QToolButton>("_takeTransitionToolButton_0");
    const QTemporaryDir folder;
    const QString file = folder.filePath("fade.jpg");
    QVERIFY(QImage(50, 42, QImage::Format_RGB32).save(file));
    for (GListWidgetItemInfo& item : *desk.console->getEffectList(8))
      item.thumbPath = file;
    desk.console->updateTakeButton(0);
    QCOMPARE(button->icon().availableSizes(), QList<QSize>{QSize(50, 42)});
    QVERIFY(QFile::remove(file));
    desk.console->updateTakeButton(0);
    QVERIFY(button->icon().isNull());
    QCOMPARE(button->text(), QString("Fade\nNormal"));
  }

  void allTakeButtonsAreFilledAtTheStart() {
    ControlsDesk desk;
    for (int index = 0; index < 4; ++index) {
      auto* button = desk.child<QToolButton>(qPrintable(QString("_takeTransitionToolButton_%1").arg(index)));
      QVERIFY2(button->text().contains('\n'), qPrintable(button->text()));
      QCOMPARE(button->toolTip(), button->text());
    }
  }

  void workTickPutsTheShowOnTheBoard() {
    ControlsDesk desk;
    desk.config()->channels[0].source.moviePath = "d:\\films\\opener.mp4";
    desk.show.figures.fps = 25;
    desk.show.figures.recording = true;
    desk.show.figures.loudness.shortTermLufs = -23.5;
    desk.show.figures.programDevice = {true, -41.5, 3};
    desk.show.figures.liveSources[0] = {true, 12.25, 1040, 3, 2, 1};
    desk.source->duration = 20 * kTenthsPerSecond;
    desk.console->onWorkTimer();
    const QJsonObject board = korvia::StatusBoard::instance().snapshot();
    QCOMPARE(board["buses"].toObject()["pvm"].toString(), QString("Media-0"));
    const QJsonObject channel = board["channels"].toObject()["Media-0"].toObject();
    QCOMPARE(channel["file"].toString(), QString("opener.mp4"));
    QCOMPARE(channel["state"].toString(), QString("Playing"));
    QCOMPARE(channel["duration"].toString(), QString("00:00:20"));
    QCOMPARE(board["channels"].toObject()["Stage-0"].toObject()["inUse"], QJsonValue(false));
    QCOMPARE(board["engine"].toObject()["fps"].toDouble(), 25.0);
    QCOMPARE(board["outputs"].toObject()["recording"], QJsonValue(true));
    QCOMPARE(board["sound"].toObject()["shortTermLufs"].toDouble(), -23.5);
    QCOMPARE(board["sound"].toObject()["truePeakDbtp"].toDouble(), -70.0);
    const QJsonObject live = channel["live"].toObject();
    QCOMPARE(live["driftPpm"].toDouble(), 12.25);
    QCOMPARE(live["latencyMs"].toDouble(), 1040.0);
    QCOMPARE(live["connections"].toInt(), 3);
    QCOMPARE(live["stampJumps"].toInt(), 2);
    QCOMPARE(live["missedFrames"].toInt(), 1);
    const QJsonObject device = board["sound"].toObject()["programDevice"].toObject();
    QCOMPARE(device["playing"], QJsonValue(true));
    QCOMPARE(device["driftPpm"].toDouble(), -41.5);
    QCOMPARE(device["breaks"].toInt(), 3);
    QCOMPARE(board["sound"].toObject()["previewDevice"].toObject()["playing"], QJsonValue(false));
  }

  void streamAddressStaysOffTheBoard() {
    ControlsDesk desk;
    desk.config()->channels[0].source.kind = SourceKindUrl;
    desk.config()->channels[0].source.url = "rtmp://host/live?key=secret";
    desk.console->onWorkTimer();
    const QJsonObject board = korvia::StatusBoard::instance().snapshot();
    QVERIFY(!QJsonDocument(board).toJson().contains("secret"));
  }
};

QTEST_MAIN(DeskControlsTest)
#include "tst_desk_controls.moc"

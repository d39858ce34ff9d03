// Channel strips: who is shown, held and heard, and what a click asks of the engine.
#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QtTest>

#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "StripDesk.h"
#include "console/GWidgetDisplayObject.h"
#include "console/StripArea.h"
#include "console/StripLayout.h"
#include "sources/GDialogMediaSource.h"
#include "sources/MediaFiles.h"
#include "tagKorviaShowComponentInfo.h"

namespace {

const QString kGreen = QStringLiteral("#_mainFrame{border: 2px solid rgb(9, 124, 37);}");
const QString kRed = QStringLiteral("#_videoFrame{border: 2px solid rgb(232, 32, 32);}");

QList<GDialogMediaSource*> openPickers() {
  QList<GDialogMediaSource*> pickers;
  const QWidgetList windows = QApplication::topLevelWidgets();
  for (QWidget* window : windows) {
    auto* picker = qobject_cast<GDialogMediaSource*>(window);
    if (picker)
      pickers.append(picker);
  }
  return pickers;
}

/// The first one; null when none is open.
GDialogMediaSource* openPicker() {
  return openPickers().value(0);
}

/// Without the statistics that the console asks for once a second.
QStringList openCalls(const StripDesk& desk) {
  return desk.show.calls.filter("openSource");
}

QString fileIn(const QTemporaryDir& folder, const char* name) {
  QFile file(folder.filePath(name));
  return file.open(QIODevice::WriteOnly) ? file.fileName() : QString();
}

}  // namespace

class DisplayObjectTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QVERIFY(_settings.isValid());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, _settings.path());
  }

  void buildsTheStripsOfEachMode_data() {
    QTest::addColumn<int>("mode");
    for (int mode = 0; mode <= 6; ++mode)
      QTest::newRow(qPrintable(QString::number(mode))) << mode;
  }
  void buildsTheStripsOfEachMode() {
    QFETCH(int, mode);
    ConsoleDesk desk;
    StripChooser chooser;
    StripArea area(desk.console, &chooser);
    QWidget place;
    area.build(mode, &place);
    const StripLayout* layout = StripLayout::find(mode);
    QCOMPARE(area.strips().size(), layout->total);
    QCOMPARE(area.mediaHolders().size(), layout->media);
    QCOMPARE(area.stageHolders().size(), layout->stage);
    for (int n = 0; n < layout->total; ++n) {
      const GWidgetDisplayObject* strip = area.strips().at(n);
      const bool isMedia = n < layout->media;
      QCOMPARE(strip->objectId(), isMedia ? 0x10 + n : 0x100 + n - layout->media);
      QCOMPARE(strip->isMedia(), isMedia);
      QCOMPARE(isMedia ? area.media(n) : area.stage(n - layout->media), strip);
    }
    QVERIFY(!area.media(layout->media));
    QVERIFY(!area.stage(layout->stage));
    QList<QWidget*> panels = place.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    panels.erase(std::remove_if(panels.begin(), panels.end(), [](QWidget* w) { return w->isWindow(); }),
                 panels.end());
    QCOMPARE(panels.size(), 2);
    QCOMPARE(panels[0]->findChildren<GWidgetDisplayObject*>().size(), layout->total / 2);
    QCOMPARE(panels[0]->layout()->spacing(), 2);
    QCOMPARE(panels[1]->layout()->spacing(), 4);
    area.onDestroyUi();
    QVERIFY(place.findChildren<GWidgetDisplayObject*>().isEmpty());
  }

  void unknownModeBuildsNothing() {
    ConsoleDesk desk;
    StripChooser chooser;
    StripArea area(desk.console, &chooser);
    QWidget place;
    area.build(7, &place);
    QVERIFY(area.strips().isEmpty());
  }

  void formHasTheWidgetsOfAStrip() {
    ConsoleDesk desk;
    desk.create();
    for (const char* name :
         {"_mainFrame", "_titleLabel", "_closePushButton", "_enableAudioPushButton", "_configPushButton",
          "_videoFrame", "_videoPreviewWidget", "_audioControlFrame", "_aumeterFrame"})
      QVERIFY2(desk.stripChild<QWidget>(0x10, name), name);
    const QList<QPair<const char*, QString>> buttons{{"_closePushButton", "Close"},
                                                     {"_enableAudioPushButton", "Audio Adjust"},
                                                     {"_configPushButton", "Config"}};
    for (const auto& [name, tip] : buttons) {
      const auto* button = desk.stripChild<QPushButton>(0x10, name);
      QCOMPARE(button->toolTip(), tip);
      QCOMPARE(button->maximumWidth(), 24);
    }
    StripChooser chooser;
    const GWidgetDisplayObject alone(desk.console, &chooser, 0x11, nullptr);
    QCOMPARE(alone.size(), QSize(282, 199));
  }

  void stageStripHasNoAudio() {
    StripDesk desk;
    QVERIFY(desk.button(0x100, "_enableAudioPushButton")->isHidden());
    QVERIFY(desk.stripChild<QFrame>(0x100, "_audioControlFrame")->isHidden());
    QVERIFY(!desk.button(0x10, "_enableAudioPushButton")->isHidden());
    tagKorviaShowAudioLevel levels;
    levels.setActive(0, 1);
    desk.strip(0x100)->updateLevels(levels);
    QCOMPARE(desk.button(0x100, "_enableAudioPushButton")->styleSheet(), QString());
  }

  void clickBeforeTheEngineExistsPostsNothing() {
    ConsoleDesk desk;
    desk.create();
    desk.frame.show();
    QTest::mouseClick(desk.stripChild<QWidget>(0x11, "_videoPreviewWidget"), Qt::LeftButton);
    QVERIFY(desk.show.events().empty());
    QCOMPARE(desk.stripChild<QFrame>(0x11, "_mainFrame")->styleSheet(), QString());
  }

  void leftClickAsksForPreviewRightClickForProgram() {
    StripDesk desk;
    QVERIFY(desk.isOpen);
    QTest::mousePress(desk.picture(0x11), Qt::LeftButton);
    QTest::mousePress(desk.picture(0x12), Qt::RightButton);
    QTest::mousePress(desk.picture(0x12), Qt::MiddleButton);
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventSelectChannel);
    QCOMPARE(posted.size(), std::size_t{2});
    QCOMPARE(posted[0].args[0].toInt(), 0x1001);
    QCOMPARE(posted[0].args[1].toInt(), 0x11);
    QCOMPARE(posted[1].args[0].toInt(), 0x1002);
    QCOMPARE(posted[1].args[1].toInt(), 0x12);
    QCOMPARE(desk.border(0x11), kGreen);
    QCOMPARE(desk.border(0x10), QString());
    QCOMPARE(desk.pictureBorder(0x12), kRed);
    QCOMPARE(desk.pictureBorder(0x10), QString());
    QCOMPARE(desk.console->getConfig()->pvmChannel, 0x11);
    QCOMPARE(desk.console->getConfig()->pgmChannel, 0x12);
  }

  void bordersFollowTheEngineAndNotTheClick() {
    StripDesk desk;
    desk.show.answer(ShowEventSelectChannel, [](const ScriptedShow::Event&) {
      return std::pair<QVariant, QVariant>(qulonglong{0x1001}, 0x12);
    });
    QTest::mousePress(desk.picture(0x11), Qt::LeftButton);
    desk.settle();
    QCOMPARE(desk.border(0x11), QString());
    QCOMPARE(desk.border(0x12), kGreen);
  }

  void bothBordersMayStandOnOneStrip() {
    StripDesk desk;
    QTest::mousePress(desk.picture(0x11), Qt::LeftButton);
    QTest::mousePress(desk.picture(0x11), Qt::RightButton);
    desk.settle();
    QCOMPARE(desk.border(0x11), kGreen);
    QCOMPARE(desk.pictureBorder(0x11), kRed);
  }

  void pictureResizeIsPostedForItsChannel() {
    StripDesk desk;
    desk.picture(0x12)->resize(111, 77);
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventResizeWindow);
    QCOMPARE(posted.size(), std::size_t{1});
    QCOMPARE(posted[0].args[0].toInt(), 0x12);
    const auto info = fromVariant<tagKorviaWindowInfo>(posted[0].args[1]);
    QCOMPARE(info.right, 110);
    QCOMPARE(info.bottom, 76);
    QCOMPARE(info.winId, desk.picture(0x12)->winId());
  }

  void onAirRule_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("movieAction");
    QTest::addColumn<int>("listAction");
    QTest::addColumn<bool>("onAir");
    QTest::addColumn<QStringList>("calls");
    const QStringList none;
    QTest::newRow("film, none, on air") << 1 << 0 << 2 << true << none;
    QTest::newRow("film, none, off air") << 1 << 0 << 2 << false << none;
    QTest::newRow("film, play, on air") << 1 << 1 << 0 << true << QStringList{"release"};
    QTest::newRow("film, play, off air") << 1 << 1 << 0 << false << none;
    QTest::newRow("film, pause/resume, on air") << 1 << 2 << 0 << true << QStringList{"release"};
    QTest::newRow("film, pause/resume, off air") << 1 << 2 << 0 << false << QStringList{"hold"};
    QTest::newRow("film, unknown action") << 1 << 3 << 0 << false << none;
    QTest::newRow("list, play, on air") << 2 << 0 << 1 << true << QStringList{"release"};
    QTest::newRow("list, pause/resume, off air") << 2 << 0 << 2 << false << QStringList{"hold"};
    QTest::newRow("list ignores the film's action") << 2 << 2 << 0 << false << none;
    QTest::newRow("image, whatever it says") << 5 << 2 << 2 << false << none;
    QTest::newRow("url, whatever it says") << 3 << 2 << 2 << true << none;
  }
  void onAirRule() {
    QFETCH(int, kind);
    QFETCH(int, movieAction);
    QFETCH(int, listAction);
    QFETCH(bool, onAir);
    QFETCH(QStringList, calls);
    StripDesk desk;
    tagKorviaShowSourceInfo info = sourceOf(kind);
    info.moviePGMAction = movieAction;
    info.listPGMAction = listAction;
    const ScriptedSource* source = desk.put(1, info);
    desk.strip(0x11)->applyOnAirRule(onAir ? 0x11 : 0x10);
    QCOMPARE(source->calls, calls);
  }

  void onAirRuleNeedsASource() {
    StripDesk desk;
    desk.slot(1) = sourceOf(SourceKindMovie);
    desk.strip(0x11)->applyOnAirRule(0x11);
    desk.strip(0x100)->applyOnAirRule(0x100);
    QVERIFY(desk.show.calls.isEmpty());
  }

  void programSelectionRunsTheRuleOnEveryStrip() {
    StripDesk desk;
    tagKorviaShowSourceInfo info = sourceOf(SourceKindMovie);
    info.moviePGMAction = PGMActionPauseResume;
    const ScriptedSource* on = desk.put(1, info);
    const ScriptedSource* off = desk.put(2, info);
    desk.report(ShowEventSelectChannel, qulonglong{0x1002}, 0x11);
    QCOMPARE(on->calls, QStringList{"release"});
    QCOMPARE(off->calls, QStringList{"hold"});
  }

  void paintPadChannelRunsTheRuleAndAsksForPreview() {
    StripDesk desk;
    tagKorviaShowSourceInfo info = sourceOf(SourceKindMovie);
    info.moviePGMAction = PGMActionPauseResume;
    const ScriptedSource* source = desk.put(1, info);
    desk.console->savedChanges.clear();
    desk.console->onSelectWhitePadChannel(1);
    desk.console->onSelectWhitePadChannel(4);
    QCOMPARE(desk.console->savedChanges, (SavedChanges{{3, -1}, {3, -1}}));
    desk.settle();
    QCOMPARE(source->calls, (QStringList{"release", "hold"}));
    const auto posted = desk.show.eventsOf(ShowEventSelectChannel);
    QCOMPARE(posted.size(), std::size_t{2});
    QCOMPARE(posted[0].args[1].toInt(), 0x11);
    QCOMPARE(posted[1].args[1].toInt(), 0x100);
  }

  void audioStateShowsOnTheButton() {
    StripDesk desk;
    QPushButton* button = desk.button(0x10, "_enableAudioPushButton");
    tagKorviaShowAudioLevel levels;
    levels.setActive(0, 0.9F);
    desk.strip(0x10)->updateLevels(levels);
    QCOMPARE(button->styleSheet(), QString());
    levels.setActive(0, 1.7F);
    desk.strip(0x10)->updateLevels(levels);
    QCOMPARE(button->styleSheet(), QString("QPushButton{background-color: rgb(0, 85, 0);}"));
    levels.setActive(0, 0);
    desk.strip(0x10)->updateLevels(levels);
    QCOMPARE(button->styleSheet(), QString());
  }

  void channelMixResultShowsOnTheButton() {
    StripDesk desk;
    // Straight into the slot: the next frame tick would set the state from the levels again.
    const auto report = [&desk](int channelId) {
      desk.console->slot_PostEventResult(ShowEventChannelMix, 0, channelId, 1, {}, {});
    };
    report(0x11);
    QVERIFY(!desk.button(0x11, "_enableAudioPushButton")->styleSheet().isEmpty());
    // The range runs one past the last channel, which has no strip; other ids are no channels.
    report(0x18);
    report(5);
    report(0x20);
    report(0x100);
    QVERIFY(desk.button(0x10, "_enableAudioPushButton")->styleSheet().isEmpty());
    QVERIFY(desk.button(0x100, "_enableAudioPushButton")->styleSheet().isEmpty());
  }

  void audioButtonIsOffAndStillReadable() {
    StripDesk desk;
    const QPushButton* button = desk.button(0x10, "_enableAudioPushButton");
    QVERIFY(!button->isEnabled());
    for (const int state : {0, 1}) {
      desk.strip(0x10)->setAudioState(state);
      const QIcon icon = button->icon();
      QVERIFY(!icon.isNull());
      QCOMPARE(icon.pixmap(16, 16, QIcon::Disabled).toImage(), icon.pixmap(16, 16, QIcon::Normal).toImage());
    }
  }

  void openTakesTheChosenSlotOver() {
    StripDesk desk;
    const QUuid id("{11111111-2222-3333-4444-555555555555}");
    desk.console->getConfig()->channels[1].id = id;
    desk.slot(1).incomePath = "/kept";
    desk.console->savedChanges.clear();
    QTest::mouseClick(desk.floatOf(1)->button(), Qt::LeftButton);
    GDialogMediaSource* picker = openPicker();
    QVERIFY(picker);
    QCOMPARE(picker->slot().source.incomePath, QString("/kept"));
    picker->findChild<QLineEdit*>("_moviePathLineEdit")->setText("/films/opener.mp4");
    picker->findChild<QComboBox*>("_videoSizeComboBox")->setEditText("640 X 360");
    picker->onClicked_okPushButton();
    QCOMPARE(desk.console->savedChanges, (SavedChanges{{1, -1}}));
    const tagKorviaShowChannelSlot& slot = desk.console->getConfig()->channels[1];
    QCOMPARE(slot.id, id);
    QCOMPARE(slot.source.incomePath, QString("/kept"));
    QCOMPARE(openCalls(desk), QStringList{"openSource 2"});
    QCOMPARE(desk.show.source(1)->info.kind, qint32{SourceKindMovie});
    QCOMPARE(desk.show.source(1)->info.moviePath, QString("/films/opener.mp4"));
    const qint32 width = desk.show.source(1)->format.video.secondWidth;
    QCOMPARE(width, 640);
    QCOMPARE(desk.show.lastHost, static_cast<IUnknownEx*>(static_cast<IKorviaSarnhawk*>(desk.console)));
    QVERIFY(!desk.button(0x11, "_closePushButton")->isHidden());
    QCOMPARE(desk.stripChild<QLabel>(0x11, "_titleLabel")->text(), QString("Media-1"));
    QTRY_VERIFY(!openPicker());
  }

  void cancelledOpenChangesNothing() {
    StripDesk desk;
    desk.console->savedChanges.clear();
    desk.strip(0x11)->onClicked_openSourcePushButton();
    GDialogMediaSource* picker = openPicker();
    QVERIFY(picker);
    picker->findChild<QLineEdit*>("_moviePathLineEdit")->setText("/films/opener.mp4");
    picker->onClicked_cancelPushButton();
    QCOMPARE(desk.slot(1).kind, qint32{SourceKindNone});
    QCOMPARE(desk.slot(1).moviePath, QString());
    QCOMPARE(openCalls(desk), QStringList());
    QVERIFY(desk.console->savedChanges.isEmpty());
    QTRY_VERIFY(!openPicker());
  }

  void oneStripHasOnePicker() {
    StripDesk desk;
    desk.strip(0x11)->onClicked_openSourcePushButton();
    desk.strip(0x11)->onClicked_openSourcePushButton();
    QCOMPARE(openPickers().size(), 1);
    desk.strip(0x12)->onClicked_openSourcePushButton();
    QCOMPARE(openPickers().size(), 2);
  }

  void acceptedPickerCountsWhileAnotherIsOpen() {
    StripDesk desk;
    desk.strip(0x11)->onClicked_openSourcePushButton();
    GDialogMediaSource* first = openPicker();
    desk.strip(0x12)->onClicked_openSourcePushButton();
    first->findChild<QLineEdit*>("_moviePathLineEdit")->setText("/films/opener.mp4");
    first->onClicked_okPushButton();
    QCOMPARE(openCalls(desk), QStringList{"openSource 2"});
  }

  void deskStaysUsableUnderThePicker() {
    StripDesk desk;
    desk.strip(0x11)->onClicked_openSourcePushButton();
    GDialogMediaSource* picker = openPicker();
    QVERIFY(QTest::qWaitForWindowExposed(picker));
    const auto expectUsable = [&desk](const char* what) {
      desk.show.clearEvents();
      QTest::mouseClick(desk.picture(0x12)->windowHandle(), Qt::LeftButton);
      auto* take = desk.child<QToolButton>("_takeTransitionToolButton_0");
      const QPoint place = take->mapTo(&desk.frame, take->rect().center() - QPoint(20, 0));
      QTest::mouseClick(desk.frame.windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
      desk.settle();
      QVERIFY2(desk.show.eventIds().contains(ShowEventSelectChannel), what);
      QVERIFY2(desk.show.eventIds().contains(ShowEventTake), what);
    };
    expectUsable("picker");
    picker->onClicked_optionsPushButton();
    QVERIFY(picker->findChild<QDialog*>("GDialogMediaSourceOption"));
    expectUsable("options");
    QVERIFY(openPicker());
  }

  void endOfTheConsoleClosesThePicker() {
    {
      StripDesk desk;
      desk.strip(0x11)->onClicked_openSourcePushButton();
      openPicker()->onClicked_optionsPushButton();
      openPicker()->onClicked_openMoviePushButton();
    }
    QVERIFY(!openPicker());
  }

  void hiddenDeskClosesThePicker() {
    StripDesk desk;
    desk.strip(0x11)->onClicked_openSourcePushButton();
    desk.console->hideAll();
    QTRY_VERIFY(!openPicker());
  }

  void droppedFileOpens() {
    StripDesk desk;
    const QTemporaryDir folder;
    const QString film = fileIn(folder, "a.mp4");
    desk.drop(1, {film});
    QTRY_COMPARE(openCalls(desk), QStringList{"openSource 2"});
    QCOMPARE(desk.slot(1).moviePath, film);
    const QStringList pictures{fileIn(folder, "a.png"), fileIn(folder, "b.jpg")};
    desk.drop(1, pictures);
    QTRY_COMPARE(desk.slot(1).kind, qint32{SourceKindImageList});
    QCOMPARE(desk.slot(1).imageList, pictures);
  }

  void droppedFileOnAirAsksFirst() {
    StripDesk desk;
    const QTemporaryDir folder;
    desk.put(1, sourceOf(SourceKindMovie));
    desk.report(ShowEventSelectChannel, qulonglong{0x1002}, 0x11);
    const QuestionAnswer answer(QMessageBox::No);
    desk.drop(1, {fileIn(folder, "a.mp4")});
    QTRY_VERIFY(answer.wasAsked);
    QCOMPARE(answer.details, QString("Media-1 is ON AIR"));
    QCOMPARE(openCalls(desk), QStringList());
  }

  void droppedFileGoesToTheOpenPicker() {
    StripDesk desk;
    const QTemporaryDir folder;
    desk.strip(0x11)->onClicked_openSourcePushButton();
    const QString film = fileIn(folder, "a.mp4");
    desk.drop(1, {film});
    QTRY_COMPARE(openPicker()->findChild<QLineEdit*>("_moviePathLineEdit")->text(), film);
    QCOMPARE(openCalls(desk), QStringList());
  }

  void chosenFileBecomesPictureOrFilm_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("kind");
    for (const char* suffix :
         {"png", "jpg", "jpeg", "bmp", "gif", "webp", "tif", "tiff", "tga", "svg", "JPG"})
      QTest::newRow(suffix) << QString("/p/x.%1").arg(suffix) << 5;
    for (const char* suffix : {"mp4", "mkv", "bin", "PNGX"})
      QTest::newRow(suffix) << QString("/p/x.%1").arg(suffix) << 1;
    QTest::newRow("no suffix") << "/p/x" << 1;
  }
  void chosenFileBecomesPictureOrFilm() {
    QFETCH(QString, path);
    QFETCH(int, kind);
    tagKorviaShowChannelSlot slot;
    MediaFiles::fillSlot(path, slot);
    QCOMPARE(slot.source.kind, kind);
    QCOMPARE(kind == 5 ? slot.source.imagePath : slot.source.moviePath, path);
    QCOMPARE(kind == 5 ? slot.source.moviePath : slot.source.imagePath, QString());
  }

  void closeOfMediaAsksFirst() {
    StripDesk desk;
    desk.put(1, sourceOf(SourceKindMovie));
    {
      const QuestionAnswer answer(QMessageBox::No);
      desk.strip(0x11)->onClicked_closeSourcePushButton();
      QVERIFY(answer.wasAsked);
      QCOMPARE(answer.title, QString("Message"));
      QCOMPARE(answer.text, QString("Are you sure to close this source ?"));
      QVERIFY(desk.show.source(1));
    }
    const QuestionAnswer answer(QMessageBox::Yes);
    desk.console->savedChanges.clear();
    desk.strip(0x11)->onClicked_closeSourcePushButton();
    QCOMPARE(desk.console->savedChanges, (SavedChanges{{1, -1}}));
    QVERIFY(desk.show.calls.contains("closeSource 2"));
    QVERIFY(!desk.show.source(1));
    QCOMPARE(desk.slot(1).kind, qint32{SourceKindNone});
    QVERIFY(desk.button(0x11, "_closePushButton")->isHidden());
  }

  void closeOfTheChannelOnAirWarns() {
    StripDesk desk;
    desk.put(1, sourceOf(SourceKindMovie));
    desk.put(2, sourceOf(SourceKindMovie));
    desk.report(ShowEventSelectChannel, qulonglong{0x1002}, 0x11);
    const QuestionAnswer onAir(QMessageBox::No);
    desk.strip(0x11)->onClicked_closeSourcePushButton();
    QCOMPARE(onAir.text, QString("Are you sure to close this source ?"));
    QCOMPARE(onAir.details, QString("Media-1 is ON AIR"));
    QCOMPARE(onAir.defaultButton, QMessageBox::No);
    QVERIFY(desk.show.source(1));

    const QuestionAnswer offAir(QMessageBox::No);
    desk.strip(0x12)->onClicked_closeSourcePushButton();
    QVERIFY(offAir.wasAsked);
    QCOMPARE(offAir.details, QString());
    QVERIFY(offAir.defaultButton != QMessageBox::No);
  }

  void stageOpensWithoutAStageChooserNotAtAll() {
    StripDesk desk;
    QVERIFY(!desk.floatOf(3)->button()->isEnabled());
    QVERIFY(!desk.floatOf(3)->button()->toolTip().isEmpty());
    desk.strip(0x100)->onClicked_openSourcePushButton();
    desk.settle();
    QVERIFY(desk.show.events().empty());
  }

  void stageOpensAndClosesWithoutAQuestion() {
    StripDesk desk;
    tagKorviaStageSlot& slot = desk.console->getConfig()->stages[0];
    int asked = 0;
    StripChooser chooser;
    chooser.stage = [&asked](QWidget*, tagKorviaStageSlot& stage) {
      ++asked;
      stage.folder = "/stages/news/";
      stage.info.name = "news";
      stage.info.scene.id = "{key}";
      return true;
    };
    desk.console->setStripChooser(chooser);
    desk.console->savedChanges.clear();
    desk.strip(0x100)->onClicked_openSourcePushButton();
    desk.strip(0x100)->onClicked_openSourcePushButton();
    QCOMPARE(asked, 1);
    QCOMPARE(desk.console->savedChanges, (SavedChanges{{2, -1}}));
    QCOMPARE(slot.inUse, 1);
    desk.strip(0x100)->onFrameTick();
    QVERIFY(!desk.button(0x100, "_closePushButton")->isHidden());
    QVERIFY(!desk.floatOf(3)->isVisible());

    desk.strip(0x100)->onClicked_closeSourcePushButton();
    QCOMPARE(desk.console->savedChanges.last(), qMakePair(2U, -1));
    desk.settle();
    QCOMPARE(slot.inUse, 0);
    QCOMPARE(desk.show.eventIds(), (QList<quint64>{18, 19}));
    const auto events = desk.show.events();
    QCOMPARE(events[0].args[0].toInt(), 0x100);
    QCOMPARE(fromVariant<tagKorviaShowComponentInfo>(events[0].args[1]).name, QString("news"));
    QCOMPARE(events[1].args[0].toInt(), 0x100);
    QCOMPARE(events[1].args[1].toString(), QString("{key}"));
    desk.strip(0x100)->onFrameTick();
    QVERIFY(desk.button(0x100, "_closePushButton")->isHidden());
    QVERIFY(desk.floatOf(3)->isVisible());
  }

  void stageWithoutAPathIsNotOpened() {
    StripDesk desk;
    StripChooser chooser;
    chooser.stage = [](QWidget*, tagKorviaStageSlot&) { return true; };
    desk.console->setStripChooser(chooser);
    desk.strip(0x100)->onClicked_openSourcePushButton();
    QCOMPARE(desk.console->getConfig()->stages[0].inUse, 0);
  }

 private:
  const QTemporaryDir _settings;
};

QTEST_MAIN(DisplayObjectTest)
#include "tst_display_object.moc"

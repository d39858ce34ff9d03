// Channel strips: who is shown, held, heard and restarted, and what a click asks of the engine.
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "console/GFloatWidgetToolButton.h"
#include "console/GWidgetDisplayObject.h"
#include "console/GWidgetDisplayObjectConfig.h"
#include "console/MediaFileChooser.h"
#include "console/StripArea.h"
#include "console/StripLayout.h"
#include "tagKorviaShowComponentInfo.h"

namespace {

const QString kGreen = QStringLiteral("#_mainFrame{border: 2px solid rgb(9, 124, 37);}");
const QString kRed = QStringLiteral("#_videoFrame{border: 2px solid rgb(232, 32, 32);}");

/// A desk whose engine is open and whose first channel is empty.
class OpenDesk : public ConsoleDesk {
 public:
  OpenDesk() {
    isOpen = start();
    show.removeSource(0);
    show.calls.clear();
    console->getConfig()->channels[0].source.kind = SourceKindNone;
    show.clearEvents();
  }

  QString border(int id) const { return stripChild<QFrame>(id, "_mainFrame")->styleSheet(); }
  QString pictureBorder(int id) const { return stripChild<QFrame>(id, "_videoFrame")->styleSheet(); }
  QWidget* picture(int id) const { return stripChild<QWidget>(id, "_videoPreviewWidget"); }
  QPushButton* button(int id, const char* name) const { return stripChild<QPushButton>(id, name); }
  /// Floats belong to the window; they stand in the order of the strips.
  GFloatWidgetToolButton* floatOf(int stripNumber) const {
    return frame.findChildren<GFloatWidgetToolButton*>().at(stripNumber);
  }
  tagKorviaShowSourceInfo& slot(int index) {
    return console->getConfig()->channels[static_cast<std::size_t>(index)].source;
  }
  ScriptedSource* put(int index, const tagKorviaShowSourceInfo& info) {
    slot(index) = info;
    return show.addSource(index, info);
  }

  bool isOpen = false;
};

tagKorviaShowSourceInfo sourceOf(int kind) {
  tagKorviaShowSourceInfo info;
  info.kind = kind;
  return info;
}

}  // namespace

class DisplayObjectTest : public QObject {
  Q_OBJECT

 private slots:
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
    OpenDesk desk;
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
    OpenDesk desk;
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
    OpenDesk desk;
    desk.show.answer(ShowEventSelectChannel, [](const ScriptedShow::Event&) {
      return std::pair<QVariant, QVariant>(qulonglong{0x1001}, 0x12);
    });
    QTest::mousePress(desk.picture(0x11), Qt::LeftButton);
    desk.settle();
    QCOMPARE(desk.border(0x11), QString());
    QCOMPARE(desk.border(0x12), kGreen);
  }

  void bothBordersMayStandOnOneStrip() {
    OpenDesk desk;
    QTest::mousePress(desk.picture(0x11), Qt::LeftButton);
    QTest::mousePress(desk.picture(0x11), Qt::RightButton);
    desk.settle();
    QCOMPARE(desk.border(0x11), kGreen);
    QCOMPARE(desk.pictureBorder(0x11), kRed);
  }

  void pictureResizeIsPostedForItsChannel() {
    OpenDesk desk;
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
    OpenDesk desk;
    tagKorviaShowSourceInfo info = sourceOf(kind);
    info.moviePGMAction = movieAction;
    info.listPGMAction = listAction;
    const ScriptedSource* source = desk.put(1, info);
    desk.strip(0x11)->applyOnAirRule(onAir ? 0x11 : 0x10);
    QCOMPARE(source->calls, calls);
  }

  void onAirRuleNeedsASource() {
    OpenDesk desk;
    desk.slot(1) = sourceOf(SourceKindMovie);
    desk.strip(0x11)->applyOnAirRule(0x11);
    desk.strip(0x100)->applyOnAirRule(0x100);
    QVERIFY(desk.show.calls.isEmpty());
  }

  void programSelectionRunsTheRuleOnEveryStrip() {
    OpenDesk desk;
    tagKorviaShowSourceInfo info = sourceOf(SourceKindMovie);
    info.moviePGMAction = PGMActionPauseResume;
    const ScriptedSource* on = desk.put(1, info);
    const ScriptedSource* off = desk.put(2, info);
    desk.report(ShowEventSelectChannel, qulonglong{0x1002}, 0x11);
    QCOMPARE(on->calls, QStringList{"release"});
    QCOMPARE(off->calls, QStringList{"hold"});
  }

  void paintPadChannelRunsTheRuleAndAsksForPreview() {
    OpenDesk desk;
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
    OpenDesk desk;
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
    OpenDesk desk;
    // Straight into the slot: the next frame tick would set the state from the levels again.
    const auto report = [&desk](int channelId) {
      desk.console->slot_PostEventResult(ShowEventChannelMix, 0, channelId, 1, {}, {});
    };
    report(0x11);
    QVERIFY(!desk.button(0x11, "_enableAudioPushButton")->styleSheet().isEmpty());
    // The range runs one past the last channel, which has no strip; other ids are no channels.
    report(0x18);
    report(5);
    report(0x100);
    QVERIFY(desk.button(0x10, "_enableAudioPushButton")->styleSheet().isEmpty());
    QVERIFY(desk.button(0x100, "_enableAudioPushButton")->styleSheet().isEmpty());
  }

  void audioButtonIsOffAndStillReadable() {
    OpenDesk desk;
    const QPushButton* button = desk.button(0x10, "_enableAudioPushButton");
    QVERIFY(!button->isEnabled());
    for (const int state : {0, 1}) {
      desk.strip(0x10)->setAudioState(state);
      const QIcon icon = button->icon();
      QVERIFY(!icon.isNull());
      QCOMPARE(icon.pixmap(16, 16, QIcon::Disabled).toImage(), icon.pixmap(16, 16, QIcon::Normal).toImage());
    }
  }

  void floatStandsInTheMiddleOfAnEmptyPicture() {
    OpenDesk desk;
    desk.strip(0x11)->onFrameTick();
    GFloatWidgetToolButton* button = desk.floatOf(1);
    QVERIFY(button->isVisible());
    QCOMPARE(button->size(), QSize(40, 40));
    const QWidget* picture = desk.picture(0x11);
    const QPoint centre =
        picture->mapToGlobal(QPoint((picture->width() - 1) / 2, (picture->height() - 1) / 2));
    const QPoint distance = button->pos() + QPoint(20, 20) - centre;
    QVERIFY2(distance.manhattanLength() <= 2, qPrintable(QString("%1").arg(distance.manhattanLength())));
    QVERIFY(button->windowFlags().testFlag(Qt::FramelessWindowHint));
    QCOMPARE(button->parentWidget(), &desk.frame);
    QVERIFY(!button->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  }

  void floatMovesWithTheWindow() {
    OpenDesk desk;
    desk.strip(0x11)->onFrameTick();
    const QPoint before = desk.floatOf(1)->pos();
    desk.frame.move(desk.frame.pos() + QPoint(37, 21));
    desk.strip(0x11)->onFrameTick();
    QCOMPARE(desk.floatOf(1)->pos(), before + QPoint(37, 21));
  }

  void floatGivesWayToTheCloseButtonWhileThereIsASource() {
    OpenDesk desk;
    QVERIFY(desk.button(0x11, "_closePushButton")->isHidden());
    desk.put(1, sourceOf(SourceKindMovie));
    desk.strip(0x11)->onFrameTick();
    QVERIFY(!desk.floatOf(1)->isVisible());
    QVERIFY(!desk.button(0x11, "_closePushButton")->isHidden());
    desk.show.removeSource(1);
    desk.strip(0x11)->onFrameTick();
    QVERIFY(desk.floatOf(1)->isVisible());
    QVERIFY(desk.button(0x11, "_closePushButton")->isHidden());
  }

  void floatWaitsForTheEngine() {
    ConsoleDesk desk;
    desk.create();
    desk.frame.show();
    desk.strip(0x11)->onFrameTick();
    const auto* button = desk.frame.findChildren<GFloatWidgetToolButton*>().at(1);
    QVERIFY(button->isVisible());
    QVERIFY(!button->button()->isEnabled());
    QVERIFY(desk.open());
    desk.strip(0x11)->onFrameTick();
    QVERIFY(button->button()->isEnabled());
  }

  void floatGoesWithTheWindow() {
    OpenDesk desk;
    desk.strip(0x11)->onFrameTick();
    QVERIFY(desk.floatOf(1)->isVisible());
    desk.frame.hide();
    QVERIFY(!desk.floatOf(1)->isVisible());
    desk.strip(0x11)->onFrameTick();
    QVERIFY(!desk.floatOf(1)->isVisible());
    desk.frame.show();
    desk.strip(0x11)->onFrameTick();
    QVERIFY(desk.floatOf(1)->isVisible());
    desk.frame.showMinimized();
    QVERIFY(!desk.floatOf(1)->isVisible());
    desk.strip(0x11)->onFrameTick();
    QVERIFY(!desk.floatOf(1)->isVisible());
  }

  void floatComesBackFromAMinimisedWindowInFull() {
    OpenDesk desk;
    desk.strip(0x11)->onFrameTick();
    // As window managers do with what belongs to a window that they minimise.
    desk.floatOf(1)->setWindowState(Qt::WindowMinimized);
    desk.frame.showMinimized();
    QVERIFY(!desk.floatOf(1)->isVisible());
    desk.frame.showNormal();
    desk.strip(0x11)->onFrameTick();
    QVERIFY(desk.floatOf(1)->isVisible());
    QVERIFY(!desk.floatOf(1)->isMinimized());
  }

  void openTakesTheChosenSlotOver() {
    OpenDesk desk;
    tagKorviaShowChannelSlot offered;
    StripChooser chooser;
    chooser.media = [&offered](QWidget*, tagKorviaShowChannelSlot& slot) {
      offered = slot;
      slot.id = QUuid("{11111111-2222-3333-4444-555555555555}");
      slot.name = "opener";
      slot.source.kind = SourceKindMovie;
      slot.source.moviePath = "/films/opener.mp4";
      slot.format.video.secondWidth = 640;
      return true;
    };
    desk.console->setStripChooser(chooser);
    desk.slot(1).incomePath = "/kept";
    desk.console->savedChanges.clear();
    QTest::mouseClick(desk.floatOf(1)->button(), Qt::LeftButton);
    QCOMPARE(desk.console->savedChanges, (SavedChanges{{1, -1}}));
    QCOMPARE(offered.source.incomePath, QString("/kept"));
    const tagKorviaShowChannelSlot& slot = desk.console->getConfig()->channels[1];
    QCOMPARE(slot.name, QString("opener"));
    QCOMPARE(slot.id.toString(), QString("{11111111-2222-3333-4444-555555555555}"));
    QCOMPARE(desk.show.calls, QStringList{"openSource 2"});
    QCOMPARE(desk.show.source(1)->info.moviePath, QString("/films/opener.mp4"));
    const qint32 width = desk.show.source(1)->format.video.secondWidth;
    QCOMPARE(width, 640);
    QCOMPARE(desk.show.lastHost, static_cast<IUnknownEx*>(static_cast<IKorviaSarnhawk*>(desk.console)));
    QVERIFY(!desk.button(0x11, "_closePushButton")->isHidden());
    QCOMPARE(desk.stripChild<QLabel>(0x11, "_titleLabel")->text(), QString("Media-1"));
  }

  void cancelledOpenChangesNothing() {
    OpenDesk desk;
    desk.console->savedChanges.clear();
    StripChooser chooser;
    chooser.media = [](QWidget*, tagKorviaShowChannelSlot& slot) {
      slot.source.kind = SourceKindMovie;
      return false;
    };
    desk.console->setStripChooser(chooser);
    desk.strip(0x11)->onClicked_openSourcePushButton();
    QCOMPARE(desk.slot(1).kind, qint32{SourceKindNone});
    QVERIFY(desk.show.calls.isEmpty());
    QVERIFY(desk.console->savedChanges.isEmpty());
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
    MediaFileChooser::fillSlot(path, slot);
    QCOMPARE(slot.source.kind, kind);
    QCOMPARE(kind == 5 ? slot.source.imagePath : slot.source.moviePath, path);
    QCOMPARE(kind == 5 ? slot.source.moviePath : slot.source.imagePath, QString());
  }

  void closeOfMediaAsksFirst() {
    OpenDesk desk;
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
    OpenDesk desk;
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
    OpenDesk desk;
    QVERIFY(!desk.floatOf(3)->button()->isEnabled());
    QVERIFY(!desk.floatOf(3)->button()->toolTip().isEmpty());
    desk.strip(0x100)->onClicked_openSourcePushButton();
    desk.settle();
    QVERIFY(desk.show.events().empty());
  }

  void stageOpensAndClosesWithoutAQuestion() {
    OpenDesk desk;
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
    OpenDesk desk;
    StripChooser chooser;
    chooser.stage = [](QWidget*, tagKorviaStageSlot&) { return true; };
    desk.console->setStripChooser(chooser);
    desk.strip(0x100)->onClicked_openSourcePushButton();
    QCOMPARE(desk.console->getConfig()->stages[0].inUse, 0);
  }

  void configButtonShowsItsChannel() {
    OpenDesk desk;
    desk.slot(1).kind = SourceKindMovie;
    desk.slot(1).moviePath = "d:\\films\\opener.mp4";
    desk.strip(0x11)->onClicked_configPushButton();
    auto* window = desk.console->findChild<GWidgetDisplayObjectConfig*>();
    QVERIFY(window->isVisible());
    QCOMPARE(window->windowTitle(), QString("Media Config - 1"));
    QCOMPARE(window->findChild<QLabel*>("_mediaInfoLabel")->text(), QString("Movie - opener.mp4"));
    desk.strip(0x100)->onClicked_configPushButton();
    QCOMPARE(window->windowTitle(), QString("Stage Config - 0"));
    window->hide();
    window->show();
    QTest::keyClick(window, Qt::Key_Escape);
    QVERIFY(!window->isVisible());
  }

  void configWindowIgnoresItsCloseAndHides() {
    OpenDesk desk;
    desk.strip(0x11)->onClicked_configPushButton();
    const QPointer<GWidgetDisplayObjectConfig> window =
        desk.console->findChild<GWidgetDisplayObjectConfig*>();
    QVERIFY(window->isVisible());
    QCloseEvent event;
    QCoreApplication::sendEvent(window, &event);
    QVERIFY(!event.isAccepted());
    QVERIFY(!window->isVisible());
    desk.strip(0x11)->onClicked_configPushButton();
    QVERIFY(window->isVisible());
  }

  void configWindowStaysInPlaceForTheSameChannel() {
    OpenDesk desk;
    desk.strip(0x11)->onClicked_configPushButton();
    auto* window = desk.console->findChild<GWidgetDisplayObjectConfig*>();
    window->hide();
    window->move(3, 4);
    desk.strip(0x11)->onClicked_configPushButton();
    QVERIFY(window->isVisible());
    QCOMPARE(window->pos(), QPoint(3, 4));
  }

  void minimisedConfigWindowComesBack() {
    OpenDesk desk;
    desk.strip(0x11)->onClicked_configPushButton();
    auto* window = desk.console->findChild<GWidgetDisplayObjectConfig*>();
    for (const int id : {0x11, 0x12}) {
      window->showMinimized();
      desk.strip(id)->onClicked_configPushButton();
      QVERIFY(window->isVisible());
      QVERIFY(!window->isMinimized());
    }
  }

  void visibleConfigWindowFollowsThePreview() {
    OpenDesk desk;
    desk.strip(0x11)->onClicked_configPushButton();
    desk.report(ShowEventSelectChannel, qulonglong{0x1001}, 0x12);
    auto* window = desk.console->findChild<GWidgetDisplayObjectConfig*>();
    QCOMPARE(window->windowTitle(), QString("Media Config - 2"));
    window->hide();
    desk.report(ShowEventSelectChannel, qulonglong{0x1001}, 0x10);
    QCOMPARE(window->windowTitle(), QString("Media Config - 2"));
  }

  void silentStreamRestartsAfterTheTimeout() {
    OpenDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindUrl));
    source->rate = 0;
    desk.strip(0x11)->onFrameTick();
    desk.passTime(3200);
    desk.strip(0x11)->onFrameTick();
    QVERIFY(source->calls.isEmpty());
    desk.passTime(1);
    QTest::ignoreMessage(QtDebugMsg, "media stream restart : 1");
    desk.strip(0x11)->onFrameTick();
    QCOMPARE(source->calls, (QStringList{"stop", "play"}));
  }

  void streamThatNeverDeliversRestartsForEver() {
    OpenDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindKrmp));
    source->rate = 0;
    for (int ms = 0; ms < 10000; ms += 100) {
      desk.strip(0x11)->onFrameTick();
      desk.passTime(100);
    }
    // Every 3200 ms and a tick, counted from the first silent tick.
    QCOMPARE(source->calls.count("play"), 2);
  }

  void streamThatRecoversIsLeftAlone() {
    OpenDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindUrl));
    source->rate = 0;
    desk.strip(0x11)->onFrameTick();
    desk.passTime(3000);
    source->rate = 0.1F;
    desk.strip(0x11)->onFrameTick();
    source->rate = 0;
    desk.passTime(3000);
    desk.strip(0x11)->onFrameTick();
    desk.passTime(3000);
    desk.strip(0x11)->onFrameTick();
    QVERIFY(source->calls.isEmpty());
  }

  void incomeStreamNeedsMoreThanTen_data() {
    QTest::addColumn<float>("rate");
    QTest::addColumn<int>("realtime");
    QTest::addColumn<bool>("restarts");
    QTest::newRow("ten is silent") << 10.0F << 0 << true;
    QTest::newRow("above ten is alive") << 10.1F << 0 << false;
    QTest::newRow("real time is not watched") << 0.0F << 1 << false;
  }
  void incomeStreamNeedsMoreThanTen() {
    QFETCH(float, rate);
    QFETCH(int, realtime);
    QFETCH(bool, restarts);
    OpenDesk desk;
    tagKorviaShowSourceInfo info = sourceOf(SourceKindIncome);
    info.incomeRealtime = static_cast<quint8>(realtime);
    ScriptedSource* source = desk.put(1, info);
    source->rate = rate;
    desk.strip(0x11)->onFrameTick();
    desk.passTime(3201);
    desk.strip(0x11)->onFrameTick();
    QCOMPARE(!source->calls.isEmpty(), restarts);
  }

  void filmsAreNotWatched() {
    OpenDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindMovie));
    source->rate = 0;
    desk.strip(0x11)->onFrameTick();
    desk.passTime(60000);
    desk.strip(0x11)->onFrameTick();
    QVERIFY(source->calls.isEmpty());
  }
};

QTEST_MAIN(DisplayObjectTest)
#include "tst_display_object.moc"

// The transition editor: what it shows of a slot, what a click or a duration does to it, and in which order.
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaShowEvents.h"
#include "PlainConsole.h"
#include "console/GWidgetDisplayObjectConfig.h"
#include "present/GListWidgetItem.h"
#include "transitions/GWidgetTransitionEffectConfig.h"

namespace {

const QStringList kKinds{"_sysKind",  "_eraseKind",      "_fadeKind",  "_glideKind", "_stretchKind",
                         "_blurKind", "_distortionKind", "_colorKind", "_easingType"};

/// A console that keeps what the editor asks of it, with the slot as it was at that moment.
class LoggingConsole final : public PlainConsole {
 public:
  void postEvent(quint64 eventId, QVariant, QVariant, QVariant, QVariant) override {
    log.append(QString("post %1").arg(eventId));
  }
  void saveChanges(unsigned what, int channel) override {
    log.append(QString("save %1 %2 %3").arg(what).arg(channel).arg(slotText()));
  }
  void updateTakeButton(int index) override {
    log.append(QString("update %1 %2").arg(index).arg(slotText()));
  }
  void takeChannel(int channelId, int index) override {
    log.append(QString("take %1 %2").arg(channelId).arg(index));
  }
  void takeSelected(int index) override { log.append(QString("take %1 %2").arg(index).arg(slotText())); }
  QList<GListWidgetItemInfo>* getEffectList(int catalog) override { return catalogue.effectList(catalog); }

  /// Slot 2 as (effect, duration, easing).
  QString slotText() const {
    const tagKorviaTakeButton& slot = config.takeButtons[2];
    return QString("(%1, %2, %3)").arg(slot.effect).arg(double{slot.duration}).arg(slot.easing);
  }

  TransitionCatalogue catalogue;
  QStringList log;
};

/// An editor over slot 2, which holds effect 11, 1.5 s and easing 3.
class Editor {
 public:
  Editor() : widget(&console) {
    console.config.takeButtons[2] = {11, 1.5F, 3};
    widget.setTransition(2);
  }

  template <class T>
  T* child(const QString& name) const {
    return widget.findChild<T*>(name);
  }
  QListWidget* list(const QString& kind) const { return child<QListWidget>(kind + "ListWidget"); }
  QPushButton* button(const QString& kind) const { return child<QPushButton>(kind + "PushButton"); }
  QDoubleSpinBox* duration() const { return child<QDoubleSpinBox>("_durationDoubleSpinBox"); }
  QCheckBox* takeEffect() const { return child<QCheckBox>("_takeEffectCheckBox"); }
  QList<GListWidgetItem*> tiles(const QString& kind) const {
    QList<GListWidgetItem*> found;
    QListWidget* of = list(kind);
    for (int row = 0; row < of->count(); ++row)
      found.append(qobject_cast<GListWidgetItem*>(of->itemWidget(of->item(row))));
    return found;
  }
  GListWidgetItem* tile(const QString& kind, int id) const {
    for (GListWidgetItem* found : tiles(kind)) {
      if (found->info().id == id)
        return found;
    }
    return nullptr;
  }
  void click(const QString& kind, int id) { QTest::mouseClick(tile(kind, id), Qt::LeftButton); }
  /// Ids of the marked tiles of one list.
  QList<int> marks(const QString& kind) const {
    QList<int> ids;
    for (const GListWidgetItem* found : tiles(kind)) {
      if (found->isSelected())
        ids.append(found->info().id);
    }
    return ids;
  }
  /// Ids of the marked tiles of the eight effect lists.
  QList<int> effectMarks() const {
    QList<int> ids;
    for (const QString& kind : kKinds.mid(0, 8))
      ids += marks(kind);
    return ids;
  }

  LoggingConsole console;
  GWidgetTransitionEffectConfig widget;
};

class OpenDesk : public ConsoleDesk {
 public:
  OpenDesk() {
    isOpen = start();
    show.clearEvents();
    console->savedChanges.clear();
  }

  GWidgetTransitionEffectConfig* editor() const {
    return console->findChild<GWidgetTransitionEffectConfig*>();
  }
  QToolButton* takeButton(int index) const {
    return child<QToolButton>(qPrintable(QString("_takeTransitionToolButton_%1").arg(index)));
  }
  void clickTile(const char* list, int row) const {
    auto* of = editor()->findChild<QListWidget*>(QLatin1String(list));
    QTest::mouseClick(of->itemWidget(of->item(row)), Qt::LeftButton);
  }

  bool isOpen = false;
};

}  // namespace

class TransitionEffectConfigTest : public QObject {
  Q_OBJECT

 private slots:
  void isAWindowOnTopWithAMinimiseButton() {
    const Editor editor;
    // The toolkit adds what a title bar needs of its own accord.
    QCOMPARE(editor.widget.windowFlags(), QWidget(nullptr, Qt::WindowFlags(0x44001)).windowFlags());
    QVERIFY(editor.widget.isHidden());
  }

  void eachListHoldsItsCatalog_data() {
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("firstCaption");
    QTest::addColumn<QString>("lastCaption");
    QTest::newRow("_sysKind") << 2 << "None - 0"
                              << "Random - 65535";
    QTest::newRow("_eraseKind") << 20 << "Left - 1"
                                << "Wheel - 20";
    QTest::newRow("_fadeKind") << 2 << "Normal - 22"
                               << "Drop - 23";
    QTest::newRow("_glideKind") << 20 << "InLeft - 25"
                                << "PushBottom - 44";
    QTest::newRow("_stretchKind") << 6 << "Left - 46"
                                  << "CenterInnerBIn - 51";
    QTest::newRow("_blurKind") << 8 << "Circular - 53"
                               << "Zoom - 60";
    QTest::newRow("_distortionKind") << 11 << "BandedSwirl - 62"
                                     << "ApplyTextureMap - 72";
    QTest::newRow("_colorKind") << 6 << "MostBright - 74"
                                << "ApplyTextureMap - 79";
    QTest::newRow("_easingType") << 29 << "Linear - 0"
                                 << "OutInCirc - 28";
  }
  void eachListHoldsItsCatalog() {
    QFETCH(int, size);
    QFETCH(QString, firstCaption);
    QFETCH(QString, lastCaption);
    const Editor editor;
    const auto tiles = editor.tiles(QTest::currentDataTag());
    QCOMPARE(tiles.size(), size);
    QCOMPARE(tiles.first()->info().name, firstCaption);
    QCOMPARE(tiles.last()->info().name, lastCaption);
    for (const GListWidgetItem* tile : tiles)
      QCOMPARE(tile->maximumSize(), QSize(100, 100));
  }

  void sharedListKeepsThePlainLabel() {
    Editor editor;
    QCOMPARE(editor.console.getEffectList(1)->first().name, QString("Left"));
    QCOMPARE(editor.console.getEffectList(8)->last().name, QString("ApplyTextureMap"));
    QCOMPARE(TransitionCatalogue::easingList().first().name, QString("Linear"));
  }

  void buttonsLeadToTheirPages() {
    const Editor editor;
    const QStringList texts{"Sys",  "Erase",      "Fade",  "Glide",      "Stretch",
                            "Blur", "Distortion", "Color", "Easing Type"};
    auto* pages = editor.child<QStackedWidget>("_effectKindStackedWidget");
    QCOMPARE(pages->currentWidget()->objectName(), QString("_sysKindPage"));
    QVERIFY(editor.button("_sysKind")->isChecked());
    for (int i = kKinds.size() - 1; i >= 0; --i) {
      QPushButton* button = editor.button(kKinds[i]);
      QCOMPARE(button->text(), texts[i]);
      button->click();
      QCOMPARE(pages->currentWidget()->objectName(), kKinds[i] + "Page");
      QVERIFY(pages->currentWidget()->isAncestorOf(editor.list(kKinds[i])));
      for (const QString& other : kKinds)
        QCOMPARE(editor.button(other)->isChecked(), other == kKinds[i]);
    }
    editor.button("_sysKind")->click();
    QVERIFY(editor.button("_sysKind")->isChecked());
  }

  void durationAndTakeEffectComeUpAsTheOperatorKnowsThem() {
    LoggingConsole console;
    const GWidgetTransitionEffectConfig widget(&console);
    const auto* duration = widget.findChild<QDoubleSpinBox*>("_durationDoubleSpinBox");
    QCOMPARE(duration->decimals(), 1);
    QCOMPARE(duration->minimum(), 0.0);
    QCOMPARE(duration->maximum(), 4.0);
    QCOMPARE(duration->singleStep(), 0.5);
    QCOMPARE(duration->value(), 1.0);
    QCOMPARE(widget.findChild<QLabel*>("_durationLabel")->text(), QString("Duration:"));
    const auto* takeEffect = widget.findChild<QCheckBox*>("_takeEffectCheckBox");
    QCOMPARE(takeEffect->text(), QString("Take Effect"));
    QVERIFY(!takeEffect->isChecked());
  }

  void loadingShowsTheSlotAndSavesNothing() {
    const Editor editor;
    QCOMPARE(editor.widget.windowTitle(), QString("Transition Effect - [2]"));
    QCOMPARE(editor.effectMarks(), QList<int>{11});
    QCOMPARE(editor.marks("_eraseKind"), QList<int>{11});
    QCOMPARE(editor.marks("_easingType"), QList<int>{3});
    QCOMPARE(editor.duration()->value(), 1.5);
    QCOMPARE(editor.console.log, QStringList());
  }

  void loadingAnotherSlotMovesTheMarks() {
    Editor editor;
    editor.console.config.takeButtons[0] = {65535, 0.0F, 28};
    editor.widget.setTransition(0);
    QCOMPARE(editor.widget.windowTitle(), QString("Transition Effect - [0]"));
    QCOMPARE(editor.effectMarks(), QList<int>{65535});
    QCOMPARE(editor.marks("_easingType"), QList<int>{28});
    QCOMPARE(editor.duration()->value(), 0.0);
    // A number that no list holds marks nothing.
    editor.console.config.takeButtons[0] = {21, 1.0F, 29};
    editor.widget.setTransition(0);
    QVERIFY(editor.effectMarks().isEmpty());
    QVERIFY(editor.marks("_easingType").isEmpty());
    QCOMPARE(editor.console.log, QStringList());
  }

  void loadedDurationBeyondTheBoxStaysInTheSlot() {
    Editor editor;
    editor.console.config.takeButtons[1].duration = 12.25F;
    editor.widget.setTransition(1);
    QCOMPARE(editor.duration()->value(), 4.0);
    QCOMPARE(editor.console.config.takeButtons[1].duration, 12.25F);
    QCOMPARE(editor.console.log, QStringList());
  }

  void effectClickStoresUpdatesAndSaves() {
    Editor editor;
    const tagKorviaTakeButton neighbour = editor.console.config.takeButtons[1];
    editor.click("_glideKind", 44);
    QCOMPARE(editor.console.log, (QStringList{"update 2 (44, 1.5, 3)", "save 4 -1 (44, 1.5, 3)"}));
    QVERIFY(editor.console.config.takeButtons[1] == neighbour);
  }

  void checkedTakeEffectTakesBeforeItSaves() {
    Editor editor;
    editor.takeEffect()->setChecked(true);
    editor.click("_colorKind", 79);
    QCOMPARE(editor.console.log,
             (QStringList{"update 2 (79, 1.5, 3)", "take 2 (79, 1.5, 3)", "save 4 -1 (79, 1.5, 3)"}));
  }

  void easingClickRunsNoTake() {
    Editor editor;
    editor.takeEffect()->setChecked(true);
    editor.click("_easingType", 28);
    QCOMPARE(editor.console.log, (QStringList{"update 2 (11, 1.5, 28)", "save 4 -1 (11, 1.5, 28)"}));
    QCOMPARE(editor.marks("_easingType"), QList<int>{28});
    QCOMPARE(editor.effectMarks(), QList<int>{11});
  }

  void marksOfAnotherListStayUntilTheNextLoad() {
    Editor editor;
    editor.click("_eraseKind", 12);
    QCOMPARE(editor.marks("_eraseKind"), QList<int>{12});
    editor.click("_blurKind", 55);
    QCOMPARE(editor.marks("_blurKind"), QList<int>{55});
    QCOMPARE(editor.marks("_eraseKind"), QList<int>{12});
    QCOMPARE(editor.marks("_easingType"), QList<int>{3});
    editor.widget.setTransition(2);
    QCOMPARE(editor.effectMarks(), QList<int>{55});
  }

  void twoEffectsOfOneNameKeepTheirNumbers() {
    Editor editor;
    editor.click("_distortionKind", 72);
    QCOMPARE(editor.console.config.takeButtons[2].effect, 72);
    QVERIFY(editor.marks("_colorKind").isEmpty());
    editor.click("_colorKind", 79);
    QCOMPARE(editor.console.config.takeButtons[2].effect, 79);
  }

  void durationIsStoredAndSaved() {
    Editor editor;
    editor.duration()->stepUp();
    QCOMPARE(editor.console.log, QStringList("save 4 -1 (11, 2, 3)"));
    QVERIFY(editor.console.config.takeButtons[2].duration == 2.0F);
  }

  void durationOfZeroIsAccepted() {
    Editor editor;
    editor.duration()->setValue(0.0);
    QCOMPARE(editor.console.config.takeButtons[2].duration, 0.0F);
    QCOMPARE(editor.console.log, QStringList("save 4 -1 (11, 0, 3)"));
    editor.duration()->setValue(-1.0);
    QCOMPARE(editor.console.config.takeButtons[2].duration, 0.0F);
  }

  void withoutASlotNothingIsChanged_data() {
    QTest::addColumn<int>("index");
    QTest::newRow("before any") << -1;
    QTest::newRow("behind the last") << 4;
    QTest::newRow("far off") << 1000000;
    QTest::newRow("lowest") << INT_MIN;
  }
  void withoutASlotNothingIsChanged() {
    QFETCH(int, index);
    Editor editor;
    const auto before = editor.console.config.takeButtons;
    editor.widget.setTransition(index);
    editor.takeEffect()->setChecked(true);
    editor.click("_eraseKind", 12);
    editor.click("_easingType", 12);
    editor.duration()->setValue(3.0);
    QCOMPARE(editor.console.log, QStringList());
    QVERIFY(editor.console.config.takeButtons == before);
    QVERIFY(editor.effectMarks().isEmpty());
  }

  void pagesShowAllTilesWithoutScrolling() {
    ConsoleDesk look;
    Editor editor;
    editor.widget.show();
    for (const QString& kind : kKinds) {
      editor.button(kind)->click();
      QTRY_VERIFY2(!editor.tiles(kind).last()->visibleRegion().isEmpty(), qPrintable(kind));
      for (const GListWidgetItem* tile : editor.tiles(kind))
        QVERIFY2(tile->visibleRegion().boundingRect().size() == QSize(100, 100),
                 qPrintable(tile->info().name));
    }
  }

  void narrowWindowWrapsItsTiles() {
    Editor editor;
    editor.widget.show();
    editor.button("_eraseKind")->click();
    QTRY_COMPARE(editor.tile("_eraseKind", 9)->pos(), QPoint(0, 100));
    editor.widget.resize(editor.widget.minimumSizeHint().width(), 506);
    QTRY_VERIFY(editor.tile("_eraseKind", 9)->pos() != QPoint(0, 100));
    for (const GListWidgetItem* tile : editor.tiles("_eraseKind"))
      QVERIFY(tile->geometry().right() < editor.list("_eraseKind")->viewport()->width());
  }

  void closeAndEscapeHideTheEditor() {
    OpenDesk desk;
    desk.console->showTransitionConfig(0);
    const QPointer<GWidgetTransitionEffectConfig> editor = desk.editor();
    QVERIFY(editor->isVisible());
    // A window that refused would hold up the end of the desktop's session.
    QVERIFY(editor->close());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(editor);
    QVERIFY(editor->isHidden());
    desk.console->showTransitionConfig(0);
    QVERIFY(editor->isVisible());
    QTest::keyClick(editor->findChild<QDoubleSpinBox*>("_durationDoubleSpinBox"), Qt::Key_Escape);
    QVERIFY(editor->isHidden());
  }

  void minimisedEditorComesBack() {
    Editor editor;
    editor.widget.showMinimized();
    editor.widget.present();
    QVERIFY(editor.widget.isVisible());
    QVERIFY(!editor.widget.isMinimized());
  }

  void consoleMakesTheEditorHiddenBeforeTheChannelWindow() {
    OpenDesk desk;
    QVERIFY(desk.isOpen);
    QVERIFY(desk.editor());
    QVERIFY(desk.editor()->isHidden());
    const QObjectList& children = desk.console->children();
    QVERIFY(children.indexOf(desk.editor()) <
            children.indexOf(desk.console->findChild<GWidgetDisplayObjectConfig*>()));
    QVERIFY(desk.show.eventIds().isEmpty());
  }

  void menuOpensTheEditorOfItsButton() {
    OpenDesk desk;
    for (int index = 0; index < 4; ++index) {
      QAction* config = desk.takeButton(index)->menu()->actions().last();
      QVERIFY(config->isEnabled());
      config->trigger();
      QVERIFY(desk.editor()->isVisible());
      QCOMPARE(desk.editor()->windowTitle(), QString("Transition Effect - [%1]").arg(index));
      desk.editor()->hide();
    }
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventTake), 0);
    QVERIFY(desk.console->savedChanges.isEmpty());
  }

  void unknownIndexShowsNoEditor() {
    OpenDesk desk;
    desk.console->showTransitionConfig(-1);
    desk.console->showTransitionConfig(4);
    QVERIFY(desk.editor()->isHidden());
  }

  void withoutAnEditorNothingIsShown() {
    ConsoleDesk desk;
    desk.console->showTransitionConfig(0);
    QVERIFY(!desk.console->findChild<GWidgetTransitionEffectConfig*>());
    QVERIFY(desk.create());
    static_cast<IKorviaSarnhawk*>(desk.console)->close();
    QVERIFY(!desk.console->findChild<GWidgetTransitionEffectConfig*>());
    desk.console->showTransitionConfig(0);
  }

  void hidingEverythingHidesTheEditor() {
    OpenDesk desk;
    desk.console->showTransitionConfig(1);
    desk.console->hideAll();
    QVERIFY(desk.editor()->isHidden());
  }

  void chosenEffectShowsOnTheTakeButtonAndIsTaken() {
    OpenDesk desk;
    desk.report(ShowEventSelectChannel, qulonglong{0x1001}, 0x12);
    desk.console->showTransitionConfig(1);
    desk.clickTile("_eraseKindListWidget", 11);
    QCOMPARE(desk.takeButton(1)->text(), QString("Erase\nCheckerboard"));
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventTake), 0);
    desk.editor()->findChild<QCheckBox*>("_takeEffectCheckBox")->setChecked(true);
    desk.editor()->findChild<QDoubleSpinBox*>("_durationDoubleSpinBox")->setValue(0.5);
    desk.clickTile("_easingTypeListWidget", 6);
    desk.clickTile("_eraseKindListWidget", 16);
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventTake);
    QCOMPARE(posted.size(), std::size_t{1});
    QCOMPARE(posted[0].args[0].toInt(), 0x12);
    QCOMPARE(posted[0].args[1].toInt(), 17);
    QCOMPARE(posted[0].args[2].toFloat(), 0.5F);
    QCOMPARE(posted[0].args[3].toInt(), 6);
    QCOMPARE(desk.console->getConfig()->lastTakeIndex, 1);
    QCOMPARE(desk.console->savedChanges, (SavedChanges{{4, -1}, {4, -1}, {4, -1}, {4, -1}}));
  }
};

QTEST_MAIN(TransitionEffectConfigTest)
#include "tst_transition_effect_config.moc"

// The tab of the subtitles and its rows: what a click posts, in which order, and what the model holds then.
#include <QLayout>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QtTest>

#include "ConsoleDesk.h"
#include "ItemConsole.h"
#include "KorviaShowEvents.h"
#include "present/GWidgetSubtitle.h"
#include "present/ScrollText.h"

namespace {

/// A tab in a window of its own.
class Tab {
 public:
  explicit Tab(int count = 0) : widget(std::make_unique<GWidgetSubtitle>(&console)) {
    for (int i = 0; i < count; ++i)
      widget->onClicked_addPushButton();
    console.log.clear();
    widget->resize(320, 300);
    widget->show();
  }

  GListItemWidgetSubtitle* row(int index) const { return widget->rows().at(index); }
  QPushButton* button(int index, const char* name) const { return row(index)->findChild<QPushButton*>(name); }
  QPushButton* pvm(int index) const { return button(index, "_subtitlePVMVisiblePushButton"); }
  QPushButton* pgm(int index) const { return button(index, "_subtitlePGMVisiblePushButton"); }
  QListWidget* list() const { return widget->findChild<QListWidget*>("_subtitleListWidget"); }
  tagKorviaSubtitleParam& record(int index) { return console.config.textList[index]; }
  QString id(int index) const { return row(index)->param().info.id; }
  void clickDelete() const { widget->findChild<QPushButton*>("_delPushButton")->click(); }

  ItemConsole console;
  std::unique_ptr<GWidgetSubtitle> widget;
};

}  // namespace

class WidgetSubtitleTest : public QObject {
  Q_OBJECT

 private slots:
  void addingSelectsTheRowAndShowsNothing() {
    Tab tab(1);
    tab.widget->findChild<QPushButton*>("_addPushButton")->click();
    QCOMPARE(tab.console.log, QStringList{"save 200 -1"});
    QCOMPARE(tab.console.config.textList.size(), 2);
    const tagKorviaSubtitleParam& added = tab.record(1);
    QCOMPARE(added.pvmVisible, 0);
    QCOMPARE(added.pgmVisible, 0);
    QCOMPARE(added.info.text, QString("Time: ${Time}"));
    QCOMPARE(added.info.enter.duration, qint64{600});
    QCOMPARE(added.info.exit.duration, qint64{600});
    QVERIFY(added.info.id != tab.record(0).info.id);
    QVERIFY(added == tab.row(1)->param());
    QVERIFY(!tab.row(0)->isSelected());
    QVERIFY(tab.row(1)->isSelected());
    QCOMPARE(tab.row(1)->styleSheet(), QString("#_mainFrame{border: 2px solid rgb(9, 124, 37);}"));
    QCOMPARE(tab.row(0)->styleSheet(), QString());
    QCOMPARE(tab.row(1)->findChild<ScrollText*>()->text(), QString("Time: ${Time}"));
  }

  void rowsFillTheWidthOfTheList() {
    Tab tab(2);
    QCOMPARE(tab.row(1)->listWidgetItem()->sizeHint().height(), 46);
    QCOMPARE(tab.row(1)->height(), 46);
    QCOMPARE(tab.row(1)->width(), tab.list()->viewport()->width());
    QVERIFY(tab.row(1)->findChild<ScrollText*>()->width() > 100);
  }

  void aRowThatIsAddedIsInView() {
    Tab tab(12);
    tab.widget->findChild<QPushButton*>("_addPushButton")->click();
    const QRect row = tab.list()->visualItemRect(tab.row(12)->listWidgetItem());
    QVERIFY(tab.list()->viewport()->rect().contains(row));
  }

  void loadAddsARowForEachRecordAndPostsNothing() {
    ItemConsole console;
    console.config.textList = {{}, {}};
    console.config.textList[1].info.text = "second";
    console.config.textList[1].pgmVisible = 1;
    GWidgetSubtitle tab(&console);
    static_cast<ConsolePage&>(tab).onEngineOpened();
    QCOMPARE(tab.rows().size(), 2);
    QCOMPARE(tab.rows().at(1)->findChild<ScrollText*>()->text(), QString("second"));
    QVERIFY(tab.rows().at(1)->findChild<QPushButton*>("_subtitlePGMVisiblePushButton")->isChecked());
    QVERIFY(!tab.rows().at(1)->findChild<QPushButton*>("_subtitlePVMVisiblePushButton")->isChecked());
    QCOMPARE(console.log, QStringList());
  }

  void visibleButtonsShowAndHideOnTheirOwnBus() {
    Tab tab(2);
    tab.pgm(1)->click();
    QCOMPARE(tab.console.log, QStringList({"post 38", "save 200 -1"}));
    QCOMPARE(tab.console.posts[0].a1.toInt(), 0x1002);
    QVERIFY(fromVariant<tagKorviaShowTextInfo>(tab.console.posts[0].a2) == tab.record(1).info);
    QVERIFY(!tab.console.posts[0].a3.isValid());
    QVERIFY(!tab.console.posts[0].a4.isValid());
    QCOMPARE(tab.record(1).pgmVisible, 1);
    QCOMPARE(tab.record(1).pvmVisible, 0);
    tab.pvm(1)->click();
    QCOMPARE(tab.console.posts[1].id, quint64{ShowEventAddText});
    QCOMPARE(tab.console.posts[1].a1.toInt(), 0x1001);
    QCOMPARE(tab.record(1).pvmVisible, 1);
    tab.pgm(1)->click();
    QCOMPARE(tab.console.posts[2].id, quint64{39});
    QCOMPARE(tab.console.posts[2].a1.toInt(), 0x1002);
    QCOMPARE(tab.console.posts[2].a2.toString(), tab.id(1));
    QCOMPARE(tab.record(1).pgmVisible, 0);
    QCOMPARE(tab.record(1).pvmVisible, 1);
    QCOMPARE(tab.record(0).pvmVisible, 0);
  }

  void anEditReachesModelEngineAndRowInThisOrder() {
    Tab tab(2);
    tagKorviaSubtitleParam edited = tab.row(1)->param();
    edited.info.text = "edited";
    edited.pvmVisible = 1;
    tab.widget->onConfigChanged(edited);
    // The item is on no bus, and the engine gets the update all the same.
    QCOMPARE(tab.console.log, QStringList({"post 40", "save 200 -1"}));
    QVERIFY(tab.console.postedText(0) == edited.info);
    QVERIFY(!tab.console.posts[0].a2.isValid());
    QVERIFY(tab.record(1) == edited);
    QVERIFY(tab.row(1)->param() == edited);
    QCOMPARE(tab.row(1)->findChild<ScrollText*>()->text(), QString("edited"));
    QVERIFY(tab.pvm(1)->isChecked());
    QVERIFY(!(tab.record(0) == edited));
  }

  void aChangeOfAnUnknownItemIsDropped() {
    Tab tab(1);
    const tagKorviaSubtitleParam before = tab.record(0);
    tab.widget->onConfigChanged(tagKorviaSubtitleParam());
    QCOMPARE(tab.console.log, QStringList());
    QVERIFY(tab.record(0) == before);
  }

  void aPressSelectsInTheTabAndInTheList() {
    Tab tab(2);
    QTest::mouseClick(tab.row(0), Qt::LeftButton, Qt::NoModifier, QPoint(4, 4));
    QVERIFY(tab.row(0)->isSelected());
    QVERIFY(!tab.row(1)->isSelected());
    QCOMPARE(tab.list()->selectedItems(), QList<QListWidgetItem*>{tab.row(0)->listWidgetItem()});
    QTest::mouseClick(tab.row(1)->findChild<ScrollText*>(), Qt::LeftButton);
    QVERIFY(tab.row(1)->isSelected());
    QCOMPARE(tab.list()->selectedItems(), QList<QListWidgetItem*>{tab.row(1)->listWidgetItem()});
    QCOMPARE(tab.console.log, QStringList());
  }

  void configOpensThePopupWithTheRowsRecord() {
    Tab tab(2);
    tab.row(1)->setPosition(0.25, 0.5);
    tab.button(1, "_configPushButton")->click();
    QVERIFY(tab.widget->popup()->isVisible());
    QCOMPARE(tab.widget->popup()->objectId(), 0x1000);
    QCOMPARE(tab.widget->popup()->findChild<QSlider*>("_xPosHorizontalSlider")->value(), 25);
    QCOMPARE(tab.console.log, QStringList());
    tab.widget->popup()->hide();
  }

  void deleteAsksForTheSelectedRowOnly() {
    Tab tab(2);
    tab.clickDelete();
    QCOMPARE(tab.console.config.textList.size(), 2);
    tab.list()->setCurrentRow(0);
    QuestionAnswer no(QMessageBox::No);
    tab.clickDelete();
    QVERIFY(no.wasAsked);
    QCOMPARE(no.title, QString("Message"));
    QCOMPARE(no.text, QString("Are you sure to delete this subtitle ?"));
    QCOMPARE(no.buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(tab.console.config.textList.size(), 2);
    QCOMPARE(tab.console.log, QStringList());
  }

  void aDeletedItemIsHiddenOnBothBuses() {
    Tab tab(3);
    tab.pgm(1)->click();
    tab.console.log.clear();
    tab.console.posts.clear();
    const QString id = tab.id(1);
    const QString other = tab.id(2);
    const QPointer<GListItemWidgetSubtitle> row = tab.row(1);
    tab.list()->setCurrentRow(1);
    QuestionAnswer yes(QMessageBox::Yes);
    tab.clickDelete();
    QVERIFY(yes.wasAsked);
    QCOMPARE(tab.console.log, QStringList({"post 39", "post 39", "save 200 -1"}));
    QCOMPARE(tab.console.posts[0].a1.toInt(), 0x1001);
    QCOMPARE(tab.console.posts[0].a2.toString(), id);
    QCOMPARE(tab.console.posts[1].a1.toInt(), 0x1002);
    QCOMPARE(tab.console.posts[1].a2.toString(), id);
    QVERIFY(row.isNull());
    QCOMPARE(tab.console.config.textList.size(), 2);
    QCOMPARE(tab.list()->count(), 2);
    QCOMPARE(tab.widget->rows().size(), 2);
    QCOMPARE(tab.record(1).info.id, other);
    QCOMPARE(tab.id(1), other);
  }

  void aTabThatEndsWhileItAsksDeletesNothing() {
    auto tab = std::make_unique<Tab>(1);
    tab->list()->setCurrentRow(0);
    QuestionAnswer end([&](QDialog*) { tab->widget.reset(); });
    QMetaObject::invokeMethod(tab->widget.get(), [&] { tab->clickDelete(); });
    QVERIFY(end.wasAsked);
    QVERIFY(!tab->widget);
    QCOMPARE(tab->console.config.textList.size(), 1);
    QCOMPARE(tab->console.log, QStringList());
  }

  void aMoveIsTakenOverAndNothingIsPosted() {
    Tab tab(2);
    tagKorviaShowPresentPlacement placement;
    placement.kind = PresentKindSubtitle;
    placement.key = tab.id(1);
    placement.x = 0.125;
    placement.y = 0.75;
    static_cast<ConsolePage&>(*tab.widget).onPlacement(placement);
    QCOMPARE(tab.console.log, QStringList{"save 200 -1"});
    QCOMPARE(tab.record(1).info.x, 0.125);
    QCOMPARE(tab.record(1).info.y, 0.75);
    QCOMPARE(tab.row(1)->param().info.x, 0.125);
    QCOMPARE(tab.row(1)->param().info.y, 0.75);
    QCOMPARE(tab.record(0).info.x, 0.5);
  }

  void theDeskShowsTheTabsThatHavePages() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    auto* tabs = desk.child<QTabWidget>("_presentItemTabWidget");
    QVERIFY(!tabs->isHidden());
    QCOMPARE(tabs->tabText(0), QString("Subtitle"));
    for (int index = 0; index < tabs->count(); ++index)
      QVERIFY(!tabs->widget(index)->layout()->isEmpty());
    auto* tab = desk.console->findChild<GWidgetSubtitle*>();
    QVERIFY(tab);
    tab->findChild<QPushButton*>("_addPushButton")->click();
    const QString id = desk.console->getConfig()->textList.at(0).info.id;
    tab->findChild<QPushButton*>("_subtitlePGMVisiblePushButton")->click();
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventAddText), 1);

    tagKorviaShowPresentPlacement placement;
    placement.kind = PresentKindSubtitle;
    placement.key = id;
    placement.x = 0.25;
    desk.report(ShowEventPlacementChanged, toVariant(placement));
    QCOMPARE(desk.console->getConfig()->textList.at(0).info.x, 0.25);
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventPlacementCommit), 1);
    QPointer<GWidgetSubtitle> gone = tab;
    desk.console->close();
    QVERIFY(gone.isNull());
  }
};

QTEST_MAIN(WidgetSubtitleTest)
#include "tst_widget_subtitle.moc"

// How a list is filled with tiles.
#include <QListWidget>
#include <QtTest>

#include "ClickSink.h"
#include "present/GListWidgetItem.h"
#include "present/buildThumbList.h"

namespace {

class CountingList : public QListWidget {
 public:
  void doItemsLayout() override {
    ++layouts;
    QListWidget::doItemsLayout();
  }

  int layouts = 0;
};

QList<GListWidgetItemInfo> infosOf(const QStringList& names) {
  QList<GListWidgetItemInfo> infos;
  for (const QString& name : names)
    infos.append({name, QString(), 10 + infos.size(), QString(), QVariant()});
  return infos;
}

}  // namespace

class BuildThumbListTest : public QObject {
  Q_OBJECT

 private slots:
  void tilesComeInTheOrderOfTheirDescriptors() {
    QListWidget list;
    ClickSink sink;
    const auto tiles = buildThumbList(&sink, &list, infosOf({"a", "b", "c"}), {60, 60}, false);
    QCOMPARE(tiles.size(), 3);
    QCOMPARE(list.count(), 3);
    for (int row = 0; row < 3; ++row) {
      QCOMPARE(tiles[row]->info().id, 10 + row);
      QCOMPARE(tiles[row]->listWidgetItem(), list.item(row));
      QCOMPARE(list.itemWidget(list.item(row)), tiles[row]);
      QVERIFY(!tiles[row]->isSelected());
    }
  }

  void tileTakesASizeWithBothSidesAtLeastOne_data() {
    QTest::addColumn<QSize>("asked");
    QTest::addColumn<QSize>("taken");
    QTest::newRow("square") << QSize(60, 60) << QSize(60, 60);
    QTest::newRow("wide") << QSize(160, 90) << QSize(160, 90);
    QTest::newRow("smallest") << QSize(1, 1) << QSize(1, 1);
    QTest::newRow("no width") << QSize(0, 60) << QSize(100, 84);
    QTest::newRow("no height") << QSize(60, 0) << QSize(100, 84);
    QTest::newRow("invalid") << QSize() << QSize(100, 84);
  }
  void tileTakesASizeWithBothSidesAtLeastOne() {
    QFETCH(QSize, asked);
    QFETCH(QSize, taken);
    QListWidget list;
    const auto tiles = buildThumbList(nullptr, &list, infosOf({"a", "b"}), asked, false);
    for (int row = 0; row < 2; ++row) {
      QCOMPARE(tiles[row]->minimumSize(), taken);
      QCOMPARE(tiles[row]->maximumSize(), taken);
      QCOMPARE(list.item(row)->sizeHint(), taken);
    }
    QCOMPARE(list.gridSize(), taken);
  }

  void listIsClearedOnlyWhenAsked() {
    QListWidget list;
    list.addItem("old");
    const auto first = buildThumbList(nullptr, &list, infosOf({"a"}), {60, 60}, false);
    QCOMPARE(list.count(), 2);
    QCOMPARE(list.item(0)->text(), QString("old"));
    QCOMPARE(list.itemWidget(list.item(1)), first[0]);
    const QPointer<GListWidgetItem> old = first[0];
    const auto second = buildThumbList(nullptr, &list, infosOf({"b", "c"}), {60, 60}, true);
    QCOMPARE(list.count(), 2);
    QCOMPARE(list.itemWidget(list.item(0)), second[0]);
    QTRY_VERIFY(old.isNull());
    QVERIFY(buildThumbList(nullptr, &list, {}, {60, 60}, true).isEmpty());
    QCOMPARE(list.count(), 0);
  }

  void viewIsLaidOutAfterEachTileAndAtTheEnd() {
    CountingList list;
    buildThumbList(nullptr, &list, infosOf({"a", "b", "c"}), {60, 60}, false);
    QVERIFY2(list.layouts >= 4, qPrintable(QString::number(list.layouts)));
    list.layouts = 0;
    buildThumbList(nullptr, &list, {}, {60, 60}, false);
    QCOMPARE(list.layouts, 1);
  }

  void iconsWrapAtTheEdgeOfTheList() {
    QListWidget list;
    list.setViewMode(QListView::IconMode);
    list.setResizeMode(QListView::Adjust);
    list.setFrameShape(QFrame::NoFrame);
    list.resize(270, 300);
    buildThumbList(nullptr, &list, infosOf({"a", "b", "c", "d"}), {60, 60}, false);
    list.show();
    QTRY_COMPARE(cornersOf(list), (QList<QPoint>{{0, 0}, {60, 0}, {120, 0}, {180, 0}}));
    list.resize(160, 300);
    QTRY_COMPARE(cornersOf(list), (QList<QPoint>{{0, 0}, {60, 0}, {0, 60}, {60, 60}}));
  }

  void clickOnATileNamesItsList() {
    QListWidget list;
    list.setViewMode(QListView::IconMode);
    list.resize(300, 200);
    ClickSink sink;
    const auto tiles = buildThumbList(&sink, &list, infosOf({"a", "b"}), {60, 60}, false);
    list.show();
    QTest::mouseClick(tiles[1], Qt::LeftButton);
    QCOMPARE(sink.clicks.size(), 1);
    QCOMPARE(sink.clicks[0].listWidget, &list);
    QCOMPARE(sink.clicks[0].item, tiles[1]);
    QCOMPARE(sink.clicks[0].id, 11);
    // The tile keeps the click to itself.
    QVERIFY(list.selectedItems().isEmpty());
  }

 private:
  static QList<QPoint> cornersOf(const QListWidget& list) {
    QList<QPoint> corners;
    for (int row = 0; row < list.count(); ++row)
      corners.append(list.itemWidget(list.item(row))->pos());
    return corners;
  }
};

QTEST_MAIN(BuildThumbListTest)
#include "tst_build_thumb_list.moc"

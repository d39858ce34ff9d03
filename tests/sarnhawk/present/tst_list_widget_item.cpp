// A thumbnail tile: what it shows, how it is marked, whom it tells of clicks.
#include <QImageReader>
#include <QLabel>
#include <QListWidget>
#include <QTemporaryDir>
#include <QtTest>

#include "ClickSink.h"
#include "ConsoleLook.h"
#include "present/GListWidgetItem.h"

namespace {

class Tile {
 public:
  explicit Tile(const QString& name, const QString& thumbPath = QString(), qint32 id = 7)
      : listItem(&list), tile(&sink, &list, &listItem, {name, thumbPath, id, QString(), QVariant()}) {
    tile.show();
  }

  QLabel* thumb() const { return tile.findChild<QLabel*>("_thumbLabel"); }
  QLabel* caption() const { return tile.findChild<QLabel*>("_captionLabel"); }
  bool hasThumbnail() const { return thumb()->pixmap(Qt::ReturnByValue).isNull() == false; }

  ClickSink sink;
  QListWidget list;
  QListWidgetItem listItem;
  GListWidgetItem tile;
};

}  // namespace

class ListWidgetItemTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    applyConsoleLook(*qApp);
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::yellow);
    QVERIFY(picture.save(in("yellow.png")));
    QVERIFY(picture.scaled(2000, 1000).save(in("large.png")));
    QVERIFY(picture.scaled(2000, 1).save(in("thin.png")));
    QImage huge(8200, 8200, QImage::Format_Mono);
    huge.fill(0);
    QVERIFY(huge.save(in("huge.png")));
    QFile broken(in("broken.png"));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("no picture at all");
  }

  void comesWithADefaultSize() {
    const Tile tile("Left");
    QCOMPARE(tile.tile.minimumSize(), QSize(100, 84));
    QCOMPARE(tile.tile.maximumSize(), QSize(100, 84));
    QVERIFY(!tile.tile.isSelected());
    QCOMPARE(tile.tile.styleSheet(), QString());
  }

  void keepsItsDescriptor() {
    ClickSink sink;
    QListWidget list;
    auto* item = new QListWidgetItem(&list);
    const GListWidgetItem tile(&sink, &list, item, {"Left", "left.jpg", 3, "spare", 42});
    QCOMPARE(tile.info().name, QString("Left"));
    QCOMPARE(tile.info().thumbPath, QString("left.jpg"));
    QCOMPARE(tile.info().id, 3);
    QCOMPARE(tile.info().text, QString("spare"));
    QCOMPARE(tile.info().data, QVariant(42));
    QCOMPARE(tile.listWidgetItem(), item);
  }

  void captionIsBoldAndCentred() {
    const Tile tile("Left - 1");
    QVERIFY(tile.caption()->isVisible());
    QCOMPARE(tile.caption()->text(), QString("Left - 1"));
    QCOMPARE(tile.caption()->font().pointSize(), 8);
    QVERIFY(tile.caption()->font().bold());
    QCOMPARE(tile.caption()->alignment(), Qt::AlignCenter);
  }

  void emptyNameShowsOnlyTheThumbnail() {
    const Tile tile("", in("yellow.png"));
    QVERIFY(tile.caption()->isHidden());
    QVERIFY(tile.thumb()->isVisible());
    QVERIFY2(tile.thumb()->height() >= 74, qPrintable(QString::number(tile.thumb()->height())));
    const Tile named("Left", in("yellow.png"));
    QVERIFY(named.thumb()->height() < tile.thumb()->height());
  }

  void thumbnailFillsItsPlace() {
    const Tile tile("Left", in("yellow.png"));
    QVERIFY(tile.thumb()->hasScaledContents());
    QCOMPARE(tile.thumb()->cursor().shape(), Qt::PointingHandCursor);
    QCOMPARE(tile.thumb()->toolTip(), QString("Left"));
    const QImage shown = tile.thumb()->grab().toImage();
    QCOMPARE(shown.pixelColor(1, 1), QColor(Qt::yellow));
    QCOMPARE(shown.pixelColor(shown.width() - 2, shown.height() - 2), QColor(Qt::yellow));
  }

  void thumbnailThatCannotBeReadLeavesTheLabelEmpty() {
    QVERIFY(Tile("Left", in("yellow.png")).hasThumbnail());
    QVERIFY(!Tile("Left", in("missing.png")).hasThumbnail());
    QVERIFY(!Tile("Left", in("broken.png")).hasThumbnail());
    QVERIFY(!Tile("Left", "").hasThumbnail());
    QVERIFY(!Tile("Left", folder_.path()).hasThumbnail());
  }

  void largePictureIsReadAsSmallAsATileNeedsIt() {
    const Tile tile("Left", in("large.png"));
    QCOMPARE(tile.thumb()->pixmap(Qt::ReturnByValue).size(), QSize(512, 256));
    const Tile thin("Left", in("thin.png"));
    QCOMPARE(thin.thumb()->pixmap(Qt::ReturnByValue).size(), QSize(512, 1));
  }

  void pictureBeyondSixtyFourMegapixelsIsNotRead() {
    QCOMPARE(QImageReader(in("huge.png")).size(), QSize(8200, 8200));
    QVERIFY(!Tile("Left", in("huge.png")).hasThumbnail());
  }

  void selectionIsAStyleSheet() {
    Tile tile("Left");
    tile.tile.setSelected(true);
    QVERIFY(tile.tile.isSelected());
    QCOMPARE(tile.tile.styleSheet(), QString("background-color: rgb(0, 85, 0); color: rgb(255, 255, 255);"));
    tile.tile.setSelected(false);
    QVERIFY(!tile.tile.isSelected());
    QCOMPARE(tile.tile.styleSheet(), QString());
  }

  void unchangedSelectionDoesNothing() {
    Tile tile("Left");
    tile.tile.setStyleSheet("color: red;");
    tile.tile.setSelected(false);
    QCOMPARE(tile.tile.styleSheet(), QString("color: red;"));
    tile.tile.setSelected(true);
    tile.tile.setStyleSheet("color: red;");
    tile.tile.setSelected(true);
    QCOMPARE(tile.tile.styleSheet(), QString("color: red;"));
  }

  void selectedTileIsSeen() {
    Tile tile("Left", in("yellow.png"));
    tile.tile.setSelected(true);
    const QColor selected(0, 85, 0);
    const QImage shown = tile.tile.grab().toImage();
    QCOMPARE(shown.pixelColor(1, 42), selected);
    QCOMPARE(shown.pixelColor(98, 42), selected);
    QCOMPARE(shown.pixelColor(50, 1), selected);
    QCOMPARE(shown.pixelColor(6, 78), selected);
    QCOMPARE(shown.pixelColor(50, 30), QColor(Qt::yellow));
  }

  void clickHandsTheIdToTheSink() {
    Tile tile("Left", in("yellow.png"), 65535);
    QTest::mouseClick(tile.thumb(), Qt::LeftButton);
    QTest::mouseClick(tile.caption(), Qt::LeftButton);
    QTest::mouseClick(&tile.tile, Qt::LeftButton, {}, QPoint(1, 1));
    QCOMPARE(tile.sink.clicks.size(), 3);
    for (const ClickSink::Click& click : tile.sink.clicks) {
      QCOMPARE(click.listWidget, &tile.list);
      QCOMPARE(click.item, &tile.tile);
      QCOMPARE(click.id, 65535);
    }
    // How it is marked is for the sink to say.
    QVERIFY(!tile.tile.isSelected());
  }

  void doubleClickIsTwoClicks() {
    Tile tile("Left");
    QTest::mouseClick(tile.thumb(), Qt::LeftButton);
    QTest::mouseDClick(tile.thumb(), Qt::LeftButton);
    QTest::mouseRelease(tile.thumb(), Qt::LeftButton);
    QCOMPARE(tile.sink.clicks.size(), 2);
  }

  void onlyAWholeLeftClickCounts() {
    Tile tile("Left");
    QTest::mouseClick(tile.thumb(), Qt::RightButton);
    QTest::mouseClick(tile.thumb(), Qt::MiddleButton);
    QTest::mousePress(tile.thumb(), Qt::LeftButton);
    QTest::mouseRelease(tile.thumb(), Qt::LeftButton, {}, QPoint(300, 300));
    QTest::mouseRelease(tile.thumb(), Qt::LeftButton);
    QVERIFY(tile.sink.clicks.isEmpty());
  }

  void tileWithoutASinkMayBeClicked() {
    QListWidget list;
    GListWidgetItem tile(nullptr, &list, new QListWidgetItem(&list), {});
    QTest::mouseClick(&tile, Qt::LeftButton);
    QVERIFY(!tile.isSelected());
  }

 private:
  QString in(const char* name) const { return folder_.filePath(name); }

  QTemporaryDir folder_;
};

QTEST_MAIN(ListWidgetItemTest)
#include "tst_list_widget_item.moc"

// Where a popup comes up beside its button. The screen of the tests is 800 x 600 pixels.
#include <QScreen>
#include <QtTest>

#include "present/popupAt.h"

class PopupAtTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QCOMPARE(QGuiApplication::primaryScreen()->availableGeometry(), QRect(0, 0, 800, 600));
  }

  void sidesOfTheAnchor_data() {
    QTest::addColumn<int>("vertical");
    QTest::addColumn<int>("horizontal");
    QTest::addColumn<QPoint>("place");
    QTest::newRow("under, left") << 0x40 << 1 << QPoint(300, 320);
    QTest::newRow("under, centred") << 0x40 << 0x84 << QPoint(350, 320);
    QTest::newRow("under, right") << 0x40 << 2 << QPoint(460, 320);
    QTest::newRow("centred, left") << 0x84 << 1 << QPoint(300, 260);
    QTest::newRow("centred both ways") << 0x84 << 0x84 << QPoint(350, 260);
    QTest::newRow("centred, right") << 0x84 << 2 << QPoint(460, 260);
    QTest::newRow("above, left") << 0x20 << 1 << QPoint(300, 220);
    QTest::newRow("above, centred") << 0x20 << 0x84 << QPoint(350, 220);
    QTest::newRow("above, right") << 0x20 << 2 << QPoint(460, 220);
    QTest::newRow("anything else") << 0 << 0 << QPoint(460, 220);
    QTest::newRow("half of a centre is none") << 0x80 << 4 << QPoint(460, 220);
  }
  void sidesOfTheAnchor() {
    QFETCH(int, vertical);
    QFETCH(int, horizontal);
    QFETCH(QPoint, place);
    QCOMPARE(placeOf({400, 300}, {100, 80}, vertical, horizontal), place);
  }

  void staysOnTheScreen_data() {
    QTest::addColumn<QPoint>("anchor");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("place");
    QTest::newRow("left edge") << QPoint(-90, 300) << QSize(100, 80) << QPoint(0, 260);
    QTest::newRow("top edge") << QPoint(400, 10) << QSize(100, 80) << QPoint(460, 0);
    QTest::newRow("right edge") << QPoint(700, 300) << QSize(100, 80) << QPoint(700, 260);
    QTest::newRow("bottom edge") << QPoint(400, 590) << QSize(100, 80) << QPoint(460, 520);
    QTest::newRow("just fits") << QPoint(640, 560) << QSize(100, 80) << QPoint(700, 520);
    QTest::newRow("as large as the screen") << QPoint(400, 300) << QSize(800, 600) << QPoint(0, 0);
    QTest::newRow("larger than the screen") << QPoint(400, 300) << QSize(1000, 900) << QPoint(-200, -300);
  }
  void staysOnTheScreen() {
    QFETCH(QPoint, anchor);
    QFETCH(QSize, size);
    QFETCH(QPoint, place);
    QCOMPARE(placeOf(anchor, size, 0x84, 2), place);
  }

  void anchorMayBeAnywhereInItsWindow() {
    QWidget window(nullptr, Qt::FramelessWindowHint);
    window.setGeometry(100, 100, 300, 300);
    QWidget panel(&window);
    panel.setGeometry(20, 30, 200, 200);
    QWidget anchor(&panel);
    anchor.setGeometry(5, 6, 60, 20);
    window.show();
    QWidget popup(nullptr, Qt::FramelessWindowHint);
    popup.resize(100, 80);
    popupAt(&popup, &anchor, 0x40, 2);
    QCOMPARE(popup.pos(), QPoint(185, 156));
    QVERIFY(popup.isVisible());
    QCOMPARE(popup.size(), QSize(100, 80));
  }

 private:
  /// Place of a popup of this size beside an anchor of 60 x 20 pixels.
  static QPoint placeOf(const QPoint& corner, const QSize& size, int vertical, int horizontal) {
    QWidget anchor(nullptr, Qt::FramelessWindowHint);
    anchor.setGeometry(QRect(corner, QSize(60, 20)));
    anchor.show();
    QWidget popup(nullptr, Qt::FramelessWindowHint);
    popup.resize(size);
    popupAt(&popup, &anchor, vertical, horizontal);
    return popup.isVisible() ? popup.pos() : QPoint(-9999, -9999);
  }
};

QTEST_MAIN(PopupAtTest)
#include "tst_popup_at.moc"

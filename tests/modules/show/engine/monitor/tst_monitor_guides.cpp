// The guides over a monitor's picture: where they are drawn, and that nothing else is touched.
#include <QImage>
#include <QtTest>

#include "engine/monitor/MonitorGuides.h"

using namespace korvia;

class MonitorGuidesTest : public QObject {
  Q_OBJECT

  /// 200 x 100 pixels of black, with the guides.
  static QImage drawn(const MonitorGuides& guides) {
    QImage image(200, 100, QImage::Format_RGB32);
    image.fill(Qt::black);
    drawGuides(guides, {image.width(), image.height()}, image.bits(), image.bytesPerLine());
    return image;
  }
  static bool isDrawn(const QImage& image, int x, int y) { return qRed(image.pixel(x, y)) > 0; }

 private slots:
  void hiddenGuidesDrawNothing() {
    MonitorGuides guides;
    guides.item = {0.1, 0.1, 0.5, 0.5};
    guides.uprightLine = 0.5;
    QImage black(200, 100, QImage::Format_RGB32);
    black.fill(Qt::black);
    QCOMPARE(drawn(guides), black);
  }

  void linesAndFrameLieWhereTheyShould() {
    MonitorGuides guides;
    guides.isShown = true;
    guides.item = {0.2, 0.3, 0.25, 0.4};
    const QImage image = drawn(guides);
    QVERIFY(isDrawn(image, 100, 2));
    QVERIFY(isDrawn(image, 2, 50));
    QVERIFY(isDrawn(image, 10, 60));
    QVERIFY(isDrawn(image, 190, 60));
    QVERIFY(isDrawn(image, 150, 5));
    QVERIFY(isDrawn(image, 150, 95));
    QVERIFY(isDrawn(image, 40, 40));
    QVERIFY(isDrawn(image, 90, 40));
    QVERIFY(isDrawn(image, 60, 30));
    QVERIFY(isDrawn(image, 60, 70));
    for (const QPoint& between :
         {QPoint(60, 40), QPoint(2, 2), QPoint(120, 60), QPoint(10, 2), QPoint(99, 20)})
      QVERIFY(!isDrawn(image, between.x(), between.y()));
  }

  void theLineThatAttractsIsBrighter() {
    MonitorGuides guides;
    guides.isShown = true;
    const int plain = qRed(drawn(guides).pixel(100, 20));
    guides.uprightLine = 0.5;
    guides.levelLine = 0.95;
    const QImage image = drawn(guides);
    QVERIFY(qRed(image.pixel(100, 20)) > 2 * plain);
    QVERIFY(qRed(image.pixel(30, 95)) > 2 * plain);
    QCOMPARE(qRed(image.pixel(30, 50)), plain);
  }

  void anItemOutsideOfThePictureIsClipped() {
    MonitorGuides guides;
    guides.isShown = true;
    const QImage without = drawn(guides);
    guides.item = {-40, -40, 1e9, 1e9};
    QCOMPARE(drawn(guides), without);
    guides.item = {-0.5, 0.25, 0.75, 5};
    const QImage image = drawn(guides);
    QVERIFY(isDrawn(image, 30, 25));
    QVERIFY(isDrawn(image, 50, 80));
    QVERIFY(!isDrawn(image, 60, 25));
  }
};

QTEST_GUILESS_MAIN(MonitorGuidesTest)
#include "tst_monitor_guides.moc"

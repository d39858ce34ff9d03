// Monitor pictures: where they lie in the window and which colours they have.
#include <QtTest>

#include "engine/frame/FramePool.h"
#include "engine/monitor/PictureScaler.h"

using namespace korvia;

namespace {

FrameRef plain(FrameSize size, int y, int u, int v) {
  FramePool pool(size);
  MutableFrame frame = pool.acquire();
  const int values[] = {y, u, v};
  for (int plane = 0; plane < 3; ++plane)
    memset(frame->writablePlane(plane), values[plane],
           static_cast<size_t>(frame->stride(plane)) * frame->planeHeight(plane));
  return std::move(frame).publish();
}

}  // namespace

class PictureScalerTest : public QObject {
  Q_OBJECT

 private slots:
  void rectKeepsTheShape() {
    const MonitorRect wide = monitorRect({1920, 1080}, {1000, 1000});
    QCOMPARE(wide.size.width, 1000);
    QCOMPARE(wide.size.height, 562);
    QCOMPARE(wide.y, 219);
    const MonitorRect tall = monitorRect({1920, 1080}, {2000, 100});
    QCOMPARE(tall.size.width, 177);
    QCOMPARE(tall.size.height, 100);
    QCOMPARE(tall.x, 911);
    QVERIFY(monitorRect({1920, 1080}, {0, 50}).size.isEmpty());
    QCOMPARE(monitorRect({1920, 1080}, {3, 1}).size.height, 1);
  }

  void colours_data() {
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("u");
    QTest::addColumn<int>("v");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("black") << 16 << 128 << 128 << QColor(0, 0, 0);
    QTest::newRow("white") << 235 << 128 << 128 << QColor(255, 255, 255);
    QTest::newRow("red") << 63 << 102 << 240 << QColor(255, 0, 0);
    QTest::newRow("green") << 173 << 42 << 26 << QColor(0, 255, 0);
    QTest::newRow("blue") << 32 << 240 << 118 << QColor(0, 0, 255);
  }
  void colours() {
    QFETCH(int, y);
    QFETCH(int, u);
    QFETCH(int, v);
    QFETCH(QColor, colour);
    const FrameRef frame = plain({1920, 1080}, y, u, v);
    QImage image(300, 169, QImage::Format_RGB32);
    PictureScaler scaler;
    scaler.toRgb(*frame, {300, 169}, image.bits(), image.bytesPerLine());
    for (const QPoint& point : {QPoint(0, 0), QPoint(299, 168), QPoint(150, 80)}) {
      const QColor got = image.pixelColor(point);
      QVERIFY2(qAbs(got.red() - colour.red()) <= 3 && qAbs(got.green() - colour.green()) <= 3 &&
                   qAbs(got.blue() - colour.blue()) <= 3,
               qPrintable(got.name()));
    }
  }

  void everySizeFillsItsPicture() {
    const FrameRef frame = plain({640, 360}, 235, 128, 128);
    PictureScaler scaler;
    for (int side = 1; side <= 70; ++side) {
      QImage image(side, 71 - side, QImage::Format_RGB32);
      image.fill(Qt::red);
      scaler.toRgb(*frame, {image.width(), image.height()}, image.bits(), image.bytesPerLine());
      QVERIFY(image.pixelColor(0, 0).green() > 250);
      QVERIFY(image.pixelColor(image.width() - 1, image.height() - 1).green() > 250);
    }
  }

  void enlarges() {
    const FrameRef frame = plain({33, 17}, 235, 128, 128);
    QImage image(660, 340, QImage::Format_RGB32);
    PictureScaler().toRgb(*frame, {660, 340}, image.bits(), image.bytesPerLine());
    QVERIFY(image.pixelColor(659, 339).green() > 250);
  }
};

QTEST_GUILESS_MAIN(PictureScalerTest)
#include "tst_picture_scaler.moc"

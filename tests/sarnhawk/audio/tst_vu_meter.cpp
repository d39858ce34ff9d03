#include <QtTest>
#include <limits>

#include "audio/QVUMeter.h"

namespace {

/// Counts the paint events of a widget.
class PaintCounter : public QObject {
 public:
  explicit PaintCounter(QWidget* widget) { widget->installEventFilter(this); }
  bool eventFilter(QObject*, QEvent* event) override {
    paints += event->type() == QEvent::Paint;
    return false;
  }
  int paints = 0;
};

bool isNear(const QColor& actual, int red, int green, int blue) {
  return qAbs(actual.red() - red) <= 8 && qAbs(actual.green() - green) <= 8 &&
         qAbs(actual.blue() - blue) <= 8;
}

constexpr QRgb kBackground = qRgb(60, 60, 60);
constexpr QRgb kCover = qRgb(20, 20, 20);

}  // namespace

class TestVuMeter : public QObject {
  Q_OBJECT

 private slots:
  void startsWithItsDefaults();
  void hasItsPropertiesInOrder();
  void clampsValues();
  void setsLimitsBySwapping_data();
  void setsLimitsBySwapping();
  void repaintsOnEachCall();
  void paintBarPaintsAtOnce();
  void coversTheGradientAboveTheLevel();
  void paintsTheGradientFromHighToLow();
  void paintsTicks();
  void paintsNoTicksWhenLow();
  void countsFromTheMinimum();
  void survivesEqualLimits();
  void survivesTinySizes();
  void compactFormHasTwoBars();
  void compactFormIgnoresTheLimits();
};

void TestVuMeter::startsWithItsDefaults() {
  const QVUMeter meter;
  QCOMPARE(meter.colorBg(), QColor(60, 60, 60));
  QCOMPARE(meter.colorValue(), QColor(Qt::white));
  QCOMPARE(meter.colorHigh(), QColor(Qt::red));
  QCOMPARE(meter.colorLow(), QColor(Qt::green));
  QCOMPARE(meter.dimValue(), 9);
  QCOMPARE(meter.minValue(), 0.0);
  QCOMPARE(meter.maxValue(), 100.0);
  QCOMPARE(meter.leftValue(), 0.0);
  QCOMPARE(meter.rightValue(), 0.0);
}

void TestVuMeter::hasItsPropertiesInOrder() {
  const QMetaObject& meta = QVUMeter::staticMetaObject;
  QStringList names;
  for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
    names << meta.property(i).name();
  QCOMPARE(names, QStringList({"colorBg", "colorValue", "colorLow", "colorHigh", "leftValue", "rightValue",
                               "minValue", "maxValue", "dimValue"}));
  QVUMeter meter;
  QVERIFY(meter.setProperty("dimValue", 4));
  QVERIFY(meter.setProperty("colorValue", QColor(Qt::blue)));
  QCOMPARE(meter.dimValue(), 4);
  QCOMPARE(meter.colorValue(), QColor(Qt::blue));
}

void TestVuMeter::clampsValues() {
  QVUMeter meter;
  meter.setLeftValue(120);
  meter.setRightValue(-3);
  QCOMPARE(meter.leftValue(), 100.0);
  QCOMPARE(meter.rightValue(), 0.0);
  meter.setValues(-1, 100.5);
  QCOMPARE(meter.leftValue(), 0.0);
  QCOMPARE(meter.rightValue(), 100.0);
  meter.setValues(std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity());
  QCOMPARE(meter.leftValue(), 0.0);
  QCOMPARE(meter.rightValue(), 100.0);
}

void TestVuMeter::setsLimitsBySwapping_data() {
  QTest::addColumn<bool>("setsMinimum");
  QTest::addColumn<double>("value");
  QTest::addColumn<double>("minimum");
  QTest::addColumn<double>("maximum");
  QTest::newRow("lower minimum pushes the old one up") << true << -20.0 << -20.0 << 0.0;
  QTest::newRow("higher minimum becomes the maximum") << true << 30.0 << 0.0 << 30.0;
  QTest::newRow("same minimum becomes the maximum") << true << 0.0 << 0.0 << 0.0;
  QTest::newRow("higher maximum pushes the old one down") << false << 150.0 << 100.0 << 150.0;
  QTest::newRow("lower maximum becomes the minimum") << false << 40.0 << 40.0 << 100.0;
  QTest::newRow("same maximum becomes the minimum") << false << 100.0 << 100.0 << 100.0;
}

void TestVuMeter::setsLimitsBySwapping() {
  QFETCH(bool, setsMinimum);
  QFETCH(double, value);
  QFETCH(double, minimum);
  QFETCH(double, maximum);
  QVUMeter meter;
  if (setsMinimum)
    meter.setMinValue(value);
  else
    meter.setMaxValue(value);
  QCOMPARE(meter.minValue(), minimum);
  QCOMPARE(meter.maxValue(), maximum);
}

void TestVuMeter::repaintsOnEachCall() {
  QVUMeter meter;
  meter.resize(40, 103);
  meter.show();
  QVERIFY(QTest::qWaitForWindowExposed(&meter));
  QCoreApplication::processEvents();
  PaintCounter counter(&meter);
  for (int i = 1; i <= 5; ++i) {
    meter.setValues(i, i);
    QTRY_COMPARE(counter.paints, i);
  }
}

void TestVuMeter::paintBarPaintsAtOnce() {
  QVUMeter meter;
  meter.resize(40, 103);
  meter.show();
  QVERIFY(QTest::qWaitForWindowExposed(&meter));
  QCoreApplication::processEvents();
  PaintCounter counter(&meter);
  meter.paintBar();
  QCOMPARE(counter.paints, 1);
}

void TestVuMeter::coversTheGradientAboveTheLevel() {
  QVUMeter meter;
  meter.resize(40, 103);
  meter.setValues(50, 100);
  const QImage image = meter.grab().toImage();
  QCOMPARE(image.pixel(0, 50), kBackground);
  QCOMPARE(image.pixel(20, 50), kBackground);
  // 99 pixels of bar, 49 of them lit on the left, all of them on the right.
  QCOMPARE(image.pixel(10, 5), kCover);
  QCOMPARE(image.pixel(10, 48), kCover);
  QVERIFY(image.pixelColor(10, 56).green() > 100);
  QVERIFY(image.pixelColor(30, 5).red() > 200);
}

void TestVuMeter::paintsTheGradientFromHighToLow() {
  QVUMeter meter;
  meter.resize(40, 103);
  meter.setValues(100, 100);
  const QImage image = meter.grab().toImage();
  QVERIFY(isNear(image.pixelColor(10, 4), 250, 5, 0));
  QVERIFY(isNear(image.pixelColor(10, 64), 95, 160, 0));
  QVERIFY(isNear(image.pixelColor(30, 98), 8, 247, 0));
}

void TestVuMeter::paintsTicks() {
  QVUMeter meter;
  meter.resize(40, 103);
  meter.setValues(100, 100);
  const QImage image = meter.grab().toImage();
  // The first tick of 11 is at 102 - 99 / 12 - 1, the last at 102 - 11 * 99 / 12 - 1.
  for (const int y : {93, 11}) {
    QCOMPARE(image.pixel(10, y), kCover);
    QCOMPARE(image.pixel(30, y), kCover);
    QVERIFY(image.pixelColor(3, y).red() + image.pixelColor(3, y).green() > 200);
  }
  QVERIFY(image.pixelColor(10, 97).green() > 200);
}

void TestVuMeter::paintsNoTicksWhenLow() {
  QVUMeter meter;
  meter.resize(40, 18);
  meter.setValues(100, 100);
  const QImage image = meter.grab().toImage();
  for (int y = 4; y < 15; ++y)
    QVERIFY(image.pixelColor(10, y).red() + image.pixelColor(10, y).green() > 200);
}

void TestVuMeter::countsFromTheMinimum() {
  QVUMeter meter;
  meter.resize(40, 103);
  meter.setMaxValue(150);
  meter.setLeftValue(125);
  QCOMPARE(meter.minValue(), 100.0);
  const QImage image = meter.grab().toImage();
  QCOMPARE(image.pixel(10, 48), kCover);
  QVERIFY(image.pixelColor(10, 56).green() > 100);
}

void TestVuMeter::survivesEqualLimits() {
  QVUMeter meter;
  meter.resize(40, 103);
  meter.setMinValue(0);
  QCOMPARE(meter.maxValue(), meter.minValue());
  meter.setValues(5, 5);
  QCOMPARE(meter.grab().toImage().pixel(10, 50), kCover);
}

void TestVuMeter::survivesTinySizes() {
  for (const QSize& size : {QSize(1, 1), QSize(5, 3), QSize(9, 4), QSize(2, 200), QSize(200, 2)}) {
    QVUMeter full;
    full.resize(size);
    full.setValues(70, 70);
    QCOMPARE(full.grab().toImage().pixel(0, 0), kBackground);
    QVUMeter compact(nullptr, true);
    compact.resize(size);
    QCOMPARE(compact.grab().toImage().pixel(0, 0), kBackground);
  }
}

void TestVuMeter::compactFormHasTwoBars() {
  QVUMeter meter(nullptr, true);
  meter.resize(20, 80);
  meter.setValues(60, 80);
  const QImage image = meter.grab().toImage();
  const QRgb green = QColor(Qt::green).rgb();
  QCOMPARE(image.pixel(5, 31), kBackground);
  QCOMPARE(image.pixel(5, 32), green);
  QCOMPARE(image.pixel(9, 79), green);
  QCOMPARE(image.pixel(10, 15), kBackground);
  QCOMPARE(image.pixel(10, 16), green);
  QCOMPARE(image.pixel(19, 79), green);
}

void TestVuMeter::compactFormIgnoresTheLimits() {
  QVUMeter meter(nullptr, true);
  meter.resize(20, 80);
  meter.setMinValue(50);
  QCOMPARE(meter.maxValue(), 50.0);
  meter.setValues(50, 50);
  const QImage image = meter.grab().toImage();
  QCOMPARE(image.pixel(5, 39), kBackground);
  QCOMPARE(image.pixel(5, 40), QColor(Qt::green).rgb());
}

QTEST_MAIN(TestVuMeter)
#include "tst_vu_meter.moc"

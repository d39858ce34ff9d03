// What the engine is told before it opens.
#include <QtTest>

#include "ConsoleDesk.h"

class EngineStartTest : public QObject {
  Q_OBJECT

 private slots:
  void frameRateIsDividedInWholeNumbers_data() {
    QTest::addColumn<int>("numerator");
    QTest::addColumn<int>("denominator");
    QTest::addColumn<float>("fps");
    QTest::newRow("25") << 25 << 1 << 25.0F;
    QTest::newRow("29.97") << 30000 << 1001 << 29.0F;
    QTest::newRow("59.94") << 60000 << 1001 << 59.0F;
    QTest::newRow("12.5") << 25 << 2 << 12.0F;
    QTest::newRow("no rate") << 25 << 0 << 0.0F;
  }
  void frameRateIsDividedInWholeNumbers() {
    QFETCH(int, numerator);
    QFETCH(int, denominator);
    QFETCH(float, fps);
    ConsoleDesk desk;
    desk.create();
    tagKorviaVideoFormat& format = desk.console->getConfig()->engineInfo.format;
    format.fpsNumerator = numerator;
    format.fpsDenominator = denominator;
    QVERIFY(desk.open());
    QCOMPARE(desk.console->frameRates, QList<float>{fps});
  }
};

QTEST_MAIN(EngineStartTest)
#include "tst_engine_start.moc"

// Arrivals a second, and silence.
#include <QtTest>

#include "engine/source/RateMeter.h"

using korvia::RateMeter;
using std::chrono::milliseconds;

class RateMeterTest : public QObject {
  Q_OBJECT

 private slots:
  void nothingIsExactlyZero() {
    RateMeter meter;
    QCOMPARE(meter.perSecond(), 0.0f);
  }

  void steadyArrivals() {
    RateMeter meter;
    const RateMeter::Time start = RateMeter::Time() + std::chrono::hours(1);
    for (int i = 0; i < 100; ++i)
      meter.count(1, start + milliseconds(i * 40));
    QCOMPARE(meter.perSecond(start + milliseconds(99 * 40)), 25.0f);
  }

  void severalAtOnce() {
    RateMeter meter;
    const RateMeter::Time start = RateMeter::Time() + std::chrono::hours(1);
    for (int i = 0; i < 100; ++i)
      meter.count(2, start + milliseconds(i * 40));
    QCOMPARE(meter.perSecond(start + milliseconds(99 * 40)), 50.0f);
  }

  void firstArrivalsCountBeforeASecondIsOver() {
    RateMeter meter;
    const RateMeter::Time start = RateMeter::Time() + std::chrono::hours(1);
    meter.count(1, start);
    QVERIFY(meter.perSecond(start) > 0);
    for (int i = 1; i < 6; ++i)
      meter.count(1, start + milliseconds(i * 100));
    QCOMPARE(meter.perSecond(start + milliseconds(500)), 6.0f);
  }

  void silenceIsExactlyZeroAndForgotten() {
    RateMeter meter;
    const RateMeter::Time start = RateMeter::Time() + std::chrono::hours(1);
    for (int i = 0; i < 100; ++i)
      meter.count(1, start + milliseconds(i * 20));
    QCOMPARE(meter.perSecond(start + milliseconds(4000)), 0.0f);
    for (int i = 0; i < 3; ++i)
      meter.count(1, start + milliseconds(10'000 + i * 100));
    QCOMPARE(meter.perSecond(start + milliseconds(10'200)), 3.0f);
  }
};

QTEST_GUILESS_MAIN(RateMeterTest)
#include "tst_rate_meter.moc"
